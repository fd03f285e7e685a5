// The status messages: every row of the table, the fallback for every code
// without one, one fixed text per code, and the same function in every column.
#include <gtest/gtest.h>

#include <string.h>

#include <set>
#include <string>

#include "tests/columns.h"

using namespace omn;

namespace {

struct Row {
    int code;
    const char* text;
};

// The table as callers know it, typos and all.
const Row kRows[] = {
    { -2, "Unknown/unspecified error" },
    { -4, "Not enough memory for the operation" },
    { -5, "Function arg/param is bad" },
    { -6, "Wrong value of data size" },
    { -7, "Bad values of bounds: the lower bound is greater than the upper bound" },
    { -8, "Null pointer error" },
    { -9, "Not enough memory allocated for the operation" },
    { -10, "An attempt to divide by zero" },
    { -11, "Argument is out of range or point is outside the image" },
    { -12, "Bad or unsupported data type" },
    { -13, "Scale bounds are out of the range" },
    { -14, "Step value is less than or equal to zero" },
    { -15, "Invalid value of the FFT order parameter" },
    { -16, "Invalid value of the FFT flag parameter" },
    { -17, "Context parameter doesn't match the operation" },
    { -18, "Invalid threshold bounds" },
    { -19, "Negative value of the level in the threshold operation" },
    { -20, "Moment value M(0,0) is too small to continue calculations" },
    { -21, "Invalid flip mode" },
    { -22, "Invalid interpolation mode" },
    { -23, "Resize factor(s) is less than or equal to zero" },
    { -24, "Invalid value of the delay line sample index" },
    { -25, "Order of an IIR filter is less than or equal to zero" },
    { -26, "Length of a FIR filter is less than or equal to zero" },
    { -27, "Relative frequency value is out of range" },
    { -28, "MR FIR sampling phase is negative, or greater than or equal to the sampling factor" },
    { -29, "MR FIR sampling factor is less than or equal to zero" },
    { -30, "Phase value is out of range: 0 <= phase < factor" },
    { -31, "Sampling factor is less than or equal to zero" },
    { -32, "Shift value is less than zero" },
    { -33, "Invalid mask size" },
    { -34, "Anchor point is outside the mask" },
    { -35, "Invalid offset value of wavelet filter" },
    { -36, "Negative epsilon value error" },
    { -37, "Stride value is less than the row length" },
    { -38, "Magnitude value is negative" },
    { -39, "Kaiser window is too huge" },
    { -40, "Triangle asymmetry is less than -PI, or greater than or equal to PI" },
    { -41, "Triangle phase is negative, or greater than or equal to 2*PI" },
    { -42, "Triangle frequency is negative, or greater than or equal to 0.5" },
    { -43, "Triangle magnitude is less than or equal to zero" },
    { -44, "Tone phase is negative, or greater than or equal to 2*PI" },
    { -45, "Tone frequency is negative, or greater than or equal to 0.5" },
    { -46, "Tone magnitude is less than or equal to zero" },
    { -47, "Illegal channel number" },
    { -48, "Sum of the conversion coefficients must be less than or equal to 1" },
    { -49, "Gamma range bounds is less than or equal to zero" },
    { -50, "Illegal type of image compositing operation" },
    { -51, "Divisor is equal to zero, function is aborted" },
    { -52, "COI is out of range" },
    { -53, "Bad or unsupported number of channels" },
    { -54, "Number of dithering levels is out of range" },
    { -55, "Bad value of noise amplitude for dithering" },
    { -56, "Unallowable values of the transformation coefficients" },
    { -57, "Size of the rectangle region is less than or equal to 1" },
    { -58, "The quadrangle is nonconvex or degenerates into triangle, line or point" },
    { -59, "All values of the mask are zero" },
    { -60, "Wrong order of the destination channels" },
    { -61, "System error in the draw text operation" },
    { -62, "Attempt to access out of the buffer" },
    { -63, "JPEG DCT coefficient is out of the range" },
    { -64, "JPEG Huffman table is destroyed" },
    { -65, "No convergence of SVD algorithm" },
    { -66, "Incorrect value of the codebook flag parameter" },
    { -67, "Negative occupation count" },
    { -69, "Filter bank is not correctly initialized" },
    { -70, "Incorrect value of the filter bank parameter" },
    { -71, "Incorrect value of the filter bank frequency parameter" },
    { -72, "Zigzag compact length is more than 64" },
    { -73, "Illegal code during DC stream processing" },
    { -74, "Illegal Huffman code during VLC stream processing" },
    { -75, "Illegal Huffman code during MV stream processing" },
    { -76, "Quantizer value is less than or equal to zero, or greater than 31" },
    { -77, "Step value is less than the plane width" },
    { -78, "Expand pixels number is less than 8" },
    { -79, "Frame height is less than or equal to zero" },
    { -80, "Frame width is less then 8" },
    { -81, "Step value is less than 16" },
    { -82, "Step value is less than 8" },
    { -83, "Prediction Mode value error" },
    { -90, "Incorrect DC linear mode" },
    { -91, "Incorrect video component mode" },
    { -92, "Incorrect number of bits per pixel" },
    { -93, "Incorrect prediction direction" },
    { -94, "All BAB values are zero" },
    { -95, "Incorrect size of block or macroblock" },
    { -96, "Incorrect temporal difference" },
    { -97, "Incorrect buffer alignment" },
    { -98, "Incorrect fcode value" },
    { -99, "Illegal code during DC stream processing" },
    { -100, "Illegal Huffman code during VLC stream processing" },
    { -101, "Illegal Huffman code during MV stream processing" },
    { -102, "Incorrect block type" },
    { -103, "Incorrect block index" },
    { -104, "Incorrect quantization parameter" },
    { -105, "Incorrect bit offset value" },
    { -106, "Number of levels for LUT is less than 2" },
    { -107, "Number of levels for histogram is less than 2" },
    { -108, "Step value is not pixel multiple" },
    { -109, "Illegal Huffman code during MCBPC Intra stream processing" },
    { -110, "Illegal Huffman code during MCBPC Inter stream processing" },
    { -111, "Illegal Huffman code during CBPY stream processing" },
    { -112, "Codeblock for decoding is damaged" },
    { -113, "Pass number exceeds allowed limits [0,nOfPasses-1]" },
    { -114, "No roots are found for equation" },
    { -115, "Incorrect Linear Spectral Pair values" },
    { -116, "Reflection coefficients could not be computed" },
    { -117, "Linear prediction could not be evaluated" },
    { -118, "Bad modulus caused a module inversion failure" },
    { -119, "Wrong value of string length" },
    { -120, "A compromised key causes suspansion of requested cryptographic operation" },
    { -121, "Invalid padding scheme" },
    { -122, "Wrong value for crypto CFB block size" },
    { -123, "Detected padding error shows the possible data corruption" },
    { -124, "Data under run error" },
    { -125, "Noise value for Wiener Filter is out range." },
    { -126, "VLC: Invalid AAC-Esc code length" },
    { -127, "VLC: Invalid input data" },
    { -128, "VLC: Invalid internal table" },
    { -129, "VLC: Unsupported code length inside table" },
    { -130, "VLC: Incorrect Esc-code length inside table header" },
    { -131, "VLC: Unsupported Ecs-algorithm" },
    { -132, "VLC: Unsupported table format" },
    { -133, "VLC: Invalid header inside table" },
    { -134, "AAC: Invalid PCM output interleaving indicator" },
    { -135, "AAC: Invalid window shape" },
    { -136, "AAC: Invalid audio object type" },
    { -137, "AAC: Invalid scalable object flag" },
    { -138, "AAC: Invalid this Mono Layer flag" },
    { -139, "AAC: Invalid this Stereo Layer flag" },
    { -140, "AAC: Invalid mono-stereo flag" },
    { -141, "AAC: Invalid channel number" },
    { -142, "AAC: Invalid stereo mask" },
    { -143, "AAC: Invalid common window flag" },
    { -144, "AAC: Invalid window sequence range" },
    { -145, "AAC: Invalid number of groups for current window length" },
    { -146, "AAC: Invalid window length (not short or long)" },
    { -147, "AAC: Invalid sample rate index" },
    { -148, "AAC: Invalid ADTS syncword" },
    { -149, "AAC: Invalid current bit offset in bitstream" },
    { -150, "AAC: Internal error" },
    { -151, "AAC: Invalid TNS profile" },
    { -152, "AAC: Invalid TNS filter direction" },
    { -153, "AAC: Invalid TNS filter coefficients" },
    { -154, "AAC: Invalid bit-resolution for TNS filter coefficients" },
    { -155, "AAC: Invalid order of TNS filter" },
    { -156, "AAC: Invalid TNS region length" },
    { -157, "AAC: Invalid number of TNS filters" },
    { -158, "AAC: Invalid number of sections" },
    { -159, "AAC: Gain control not supported" },
    { -160, "AAC: Invalid pulse data attributes" },
    { -161, "AAC: Invalid predicted coefficient index" },
    { -162, "AAC: Invalid coefficient index" },
    { -163, "AAC: Invalid quantized coefficient value" },
    { -164, "AAC: Invalid scalefactor value" },
    { -166, "AAC: Invalid section codebook" },
    { -167, "AAC: Invalid number of elements for one program" },
    { -168, "Step for MB less than 16" },
    { -169, "Step for Block less than 8" },
    { -170, "Error in fields OmnMP3SideInfo structure" },
    { -171, "Error in fields OmnMP3FrameHeader structure" },
    { -172, "ECC: Invalid Flag" },
    { -173, "ECC: Point out of EC" },
    { -174, "ECC: Invalid private key" },
    { -175, "ECC: Invalid public key" },
    { -176, "ECC: Invalid share key" },
    { -177, "ECC: Bad message digest" },
    { -178, "ECC: Bad ephemeral key" },
    { -179, "Not positive-definite matrix" },
    { -9998, "The target cpu is not supported" },
    { -9999, "The requested mode is currently not supported" },
    { 0, "No error, it's OK" },
    { 1, "No operation has been executed" },
    { 2, "Misaligned pointer in operation in which it must be aligned" },
    { 3, "Negative value(s) of the argument in the function Sqrt" },
    { 4, "INF result. Zero value was met by InvThresh with zero level" },
    { 5, "Even size of the Median Filter mask was replaced by the odd one" },
    { 6, "Zero value(s) of the divisor in the function Div" },
    { 7, "Zero value(s) of the argument in the function Ln" },
    { 8, "Negative value(s) of the argument in the function Ln" },
    { 9, "Not a Number argument value warning" },
    { 10, "JPEG marker was met in the bitstream" },
    { 11, "All result values are floored" },
    { 12, "Overflow occurred in the operation" },
    { 13, "Quantized LP syntethis filter stability check is applied at the low boundary of [0,pi]" },
    { 14, "Quantized LP syntethis filter stability check is applied at the high boundary of [0,pi]" },
    { 15, "Quantized LP syntethis filter stability check is applied at both boundaries of [0,pi]" },
    { 16, "Zero occupation count" },
    { 17, "Underflow occurred in the operation" },
    { 18, "Singularity occurred in the operation" },
    { 19, "Argument is out of the function domain" },
    { 20, "The target cpu is not Genuine Korvel" },
    { 21, "The library for given cpu cannot be set" },
    { 22, "Application does not contain OMN functions calls" },
    { 23, "The newest version of OMN dll's not found by dispatcher" },
    { 24, "The function does nothing in the dynamic version of the library" },
    { 25, "Insufficient entropy in the random seed and stimulus bit string caused the prime/key generation to fail" },
    { 26, "Number of destination strings is more than expected" },
    { 27, "Length of one of the destination strings is more than expected" },
    { 28, "4th vertex of destination quad is not equal to customer's one" },
    { 29, "Wrong ROI that has no intersection with the source or destination ROI. No operation" },
    { 30, "Wrong quadrangle that has no intersection with the source or destination ROI. No operation" },
    { 31, "Size of created codebook is less than cdbkSize argument" },
};

const char kUnknown[] = "Unknown Status Code";

} // namespace

class StatusTest : public test::ColumnTest {};

TEST_P(StatusTest, EveryRowHasItsText)
{
    ASSERT_EQ(sizeof kRows / sizeof kRows[0], 203u);
    for (const Row& r : kRows)
        EXPECT_STREQ(V(omnGetStatusString)(r.code), r.text) << r.code;
}

TEST_P(StatusTest, CodesWithoutARowGiveTheFallback)
{
    std::set<int> known;
    for (const Row& r : kRows)
        known.insert(r.code);
    for (int code : { -1, -3, -68, -84, -85, -86, -87, -88, -89, -165, 32, -10000, -180, -9997, -10001, 100,
                      INT32_MIN, INT32_MAX }) {
        EXPECT_EQ(known.count(code), 0u) << code;
        EXPECT_STREQ(V(omnGetStatusString)(code), kUnknown) << code;
    }
    // Everything in the range that isn't a row falls back as well.
    for (int code = -200; code <= 40; ++code) {
        if (known.count(code) != 0)
            continue;
        EXPECT_STREQ(V(omnGetStatusString)(code), kUnknown) << code;
    }
}

TEST_P(StatusTest, EdgesOfTheNumbering)
{
    const auto msg = [&](int c) { return std::string(V(omnGetStatusString)(c)); };
    EXPECT_EQ(msg(0), "No error, it's OK");
    EXPECT_EQ(msg(16), "Zero occupation count");
    EXPECT_EQ(msg(-68), kUnknown);
    EXPECT_EQ(msg(-9998), "The target cpu is not supported");
    EXPECT_EQ(msg(-9999), "The requested mode is currently not supported");
    EXPECT_EQ(msg(31), "Size of created codebook is less than cdbkSize argument");
    EXPECT_EQ(msg(-80), "Frame width is less then 8");
    EXPECT_EQ(msg(-125), "Noise value for Wiener Filter is out range.");
    EXPECT_EQ(msg(-120), "A compromised key causes suspansion of requested cryptographic operation");
    EXPECT_EQ(msg(-131), "VLC: Unsupported Ecs-algorithm");
    EXPECT_EQ(msg(-130), "VLC: Incorrect Esc-code length inside table header");
    for (int c : { 13, 14, 15 })
        EXPECT_NE(msg(c).find("syntethis"), std::string::npos) << c;
    // Shared wording under two codes.
    EXPECT_EQ(msg(-75), msg(-101));
    EXPECT_EQ(msg(-74), msg(-100));
    EXPECT_EQ(msg(-73), msg(-99));
}

TEST_P(StatusTest, OneFixedTextPerCode)
{
    std::set<const char*> seen;
    for (const Row& r : kRows) {
        const char* a = V(omnGetStatusString)(r.code);
        EXPECT_EQ(a, V(omnGetStatusString)(r.code)) << r.code;
        // Every code its own storage, even where two share their wording.
        EXPECT_TRUE(seen.insert(a).second) << r.code;
    }
    EXPECT_EQ(V(omnGetStatusString)(-1), V(omnGetStatusString)(32));
    EXPECT_EQ(seen.count(V(omnGetStatusString)(-1)), 0u);
}

TEST_P(StatusTest, SameFunctionInEveryColumn)
{
    EXPECT_EQ(test::omnGetStatusString[col()], test::omnGetStatusString[0]);
    EXPECT_EQ(V(omnGetStatusString)(-6), omnGetStatusString(-6));
}

TEST(StatusIdentifiers, NameTheirRows)
{
    const struct { int id; const char* text; } ids[] = {
        { omnStatusOk, "No error, it's OK" },
        { omnStatusBadSize, "Wrong value of data size" },
        { omnStatusNullPointer, "Null pointer error" },
        { omnStatusNoMemory, "Not enough memory allocated for the operation" },
        { omnStatusDivideByZero, "An attempt to divide by zero" },
        { omnStatusContextMismatch, "Context parameter doesn't match the operation" },
        { omnStatusBadFftOrder, "Invalid value of the FFT order parameter" },
        { omnStatusBadFftFlag, "Invalid value of the FFT flag parameter" },
        { omnStatusBadThresholdBounds, "Invalid threshold bounds" },
        { omnStatusNegativeLevel, "Negative value of the level in the threshold operation" },
        { omnStatusBadIirOrder, "Order of an IIR filter is less than or equal to zero" },
        { omnStatusBadFirLength, "Length of a FIR filter is less than or equal to zero" },
        { omnStatusBadRelativeFrequency, "Relative frequency value is out of range" },
        { omnStatusBadMrFirPhase, "MR FIR sampling phase is negative, or greater than or equal to the sampling factor" },
        { omnStatusBadMrFirFactor, "MR FIR sampling factor is less than or equal to zero" },
        { omnStatusBadSamplePhase, "Phase value is out of range: 0 <= phase < factor" },
        { omnStatusBadSampleFactor, "Sampling factor is less than or equal to zero" },
        { omnStatusNegativeShift, "Shift value is less than zero" },
        { omnStatusNegativeMagnitude, "Magnitude value is negative" },
        { omnStatusKaiserTooHuge, "Kaiser window is too huge" },
        { omnStatusBadTriangleAsymmetry, "Triangle asymmetry is less than -PI, or greater than or equal to PI" },
        { omnStatusBadTrianglePhase, "Triangle phase is negative, or greater than or equal to 2*PI" },
        { omnStatusBadTriangleFrequency, "Triangle frequency is negative, or greater than or equal to 0.5" },
        { omnStatusBadTriangleMagnitude, "Triangle magnitude is less than or equal to zero" },
        { omnStatusBadTonePhase, "Tone phase is negative, or greater than or equal to 2*PI" },
        { omnStatusBadToneFrequency, "Tone frequency is negative, or greater than or equal to 0.5" },
        { omnStatusBadToneMagnitude, "Tone magnitude is less than or equal to zero" },
        { omnStatusCpuNotSupported, "The target cpu is not supported" },
        { omnStatusSqrtNegative, "Negative value(s) of the argument in the function Sqrt" },
        { omnStatusInvThreshZero, "INF result. Zero value was met by InvThresh with zero level" },
        { omnStatusEvenMedianMask, "Even size of the Median Filter mask was replaced by the odd one" },
        { omnStatusDivZeroValues, "Zero value(s) of the divisor in the function Div" },
        { omnStatusLnZero, "Zero value(s) of the argument in the function Ln" },
        { omnStatusLnNegative, "Negative value(s) of the argument in the function Ln" },
        { omnStatusNanArgument, "Not a Number argument value warning" },
        { omnStatusOverflow, "Overflow occurred in the operation" },
        { omnStatusUnderflow, "Underflow occurred in the operation" },
        { omnStatusSingularity, "Singularity occurred in the operation" },
        { omnStatusDomain, "Argument is out of the function domain" },
    };
    for (const auto& e : ids)
        EXPECT_STREQ(omnGetStatusString(e.id), e.text) << e.id;
}

OMN_ALL_COLUMNS(StatusTest);
