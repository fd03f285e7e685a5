/* The smallest useful caller: fill a ramp, copy it, and say which column
   of the library is in force. */
#include <stdio.h>

#include <omns.h>

int main(void)
{
    double ramp[8], copy[8];
    int i;
    if (omnsVectorRamp_64f(ramp, 8, 1.0f, 0.5f) != 0 || omnsCopy_64f(ramp, copy, 8) != 0)
        return 1;
    for (i = 0; i < 8; ++i)
        if (copy[i] != 1.0 + 0.5 * i)
            return 1;
    const OmnLibVersion* v = omnsGetLibVersion();
    printf("omns %s column %s ramp ok\n", v->Version, v->targetCpu);
    return 0;
}
