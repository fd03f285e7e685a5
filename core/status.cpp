/*
 * status.cpp - the message of every status code.
 *
 * The table keeps the whole shared vocabulary of codes, most of which no
 * function of this library returns: a caller may pass any of them here.  The
 * wording is kept exactly as callers have always seen it, odd spellings
 * included, since callers compare and display these texts.
 *
 * All texts live in one constant blob, one NUL-terminated text after the
 * other, so that every code has storage of its own (two codes that share a
 * wording still have two distinct texts) and a code always yields the same
 * pointer.  The offsets into the blob are computed at compile time.
 */
#include "core/variants.h"

#include <stddef.h>

namespace omn {
namespace common {

namespace {

/* code, text: errors first, then success and the warnings. */
#define OMN_STATUS_ROWS(X) \
    X(-2, "Unknown/unspecified error") \
    X(-4, "Not enough memory for the operation") \
    X(-5, "Function arg/param is bad") \
    X(-6, "Wrong value of data size") \
    X(-7, "Bad values of bounds: the lower bound is greater than the upper bound") \
    X(-8, "Null pointer error") \
    X(-9, "Not enough memory allocated for the operation") \
    X(-10, "An attempt to divide by zero") \
    X(-11, "Argument is out of range or point is outside the image") \
    X(-12, "Bad or unsupported data type") \
    X(-13, "Scale bounds are out of the range") \
    X(-14, "Step value is less than or equal to zero") \
    X(-15, "Invalid value of the FFT order parameter") \
    X(-16, "Invalid value of the FFT flag parameter") \
    X(-17, "Context parameter doesn't match the operation") \
    X(-18, "Invalid threshold bounds") \
    X(-19, "Negative value of the level in the threshold operation") \
    X(-20, "Moment value M(0,0) is too small to continue calculations") \
    X(-21, "Invalid flip mode") \
    X(-22, "Invalid interpolation mode") \
    X(-23, "Resize factor(s) is less than or equal to zero") \
    X(-24, "Invalid value of the delay line sample index") \
    X(-25, "Order of an IIR filter is less than or equal to zero") \
    X(-26, "Length of a FIR filter is less than or equal to zero") \
    X(-27, "Relative frequency value is out of range") \
    X(-28, "MR FIR sampling phase is negative, or greater than or equal to the sampling factor") \
    X(-29, "MR FIR sampling factor is less than or equal to zero") \
    X(-30, "Phase value is out of range: 0 <= phase < factor") \
    X(-31, "Sampling factor is less than or equal to zero") \
    X(-32, "Shift value is less than zero") \
    X(-33, "Invalid mask size") \
    X(-34, "Anchor point is outside the mask") \
    X(-35, "Invalid offset value of wavelet filter") \
    X(-36, "Negative epsilon value error") \
    X(-37, "Stride value is less than the row length") \
    X(-38, "Magnitude value is negative") \
    X(-39, "Kaiser window is too huge") \
    X(-40, "Triangle asymmetry is less than -PI, or greater than or equal to PI") \
    X(-41, "Triangle phase is negative, or greater than or equal to 2*PI") \
    X(-42, "Triangle frequency is negative, or greater than or equal to 0.5") \
    X(-43, "Triangle magnitude is less than or equal to zero") \
    X(-44, "Tone phase is negative, or greater than or equal to 2*PI") \
    X(-45, "Tone frequency is negative, or greater than or equal to 0.5") \
    X(-46, "Tone magnitude is less than or equal to zero") \
    X(-47, "Illegal channel number") \
    X(-48, "Sum of the conversion coefficients must be less than or equal to 1") \
    X(-49, "Gamma range bounds is less than or equal to zero") \
    X(-50, "Illegal type of image compositing operation") \
    X(-51, "Divisor is equal to zero, function is aborted") \
    X(-52, "COI is out of range") \
    X(-53, "Bad or unsupported number of channels") \
    X(-54, "Number of dithering levels is out of range") \
    X(-55, "Bad value of noise amplitude for dithering") \
    X(-56, "Unallowable values of the transformation coefficients") \
    X(-57, "Size of the rectangle region is less than or equal to 1") \
    X(-58, "The quadrangle is nonconvex or degenerates into triangle, line or point") \
    X(-59, "All values of the mask are zero") \
    X(-60, "Wrong order of the destination channels") \
    X(-61, "System error in the draw text operation") \
    X(-62, "Attempt to access out of the buffer") \
    X(-63, "JPEG DCT coefficient is out of the range") \
    X(-64, "JPEG Huffman table is destroyed") \
    X(-65, "No convergence of SVD algorithm") \
    X(-66, "Incorrect value of the codebook flag parameter") \
    X(-67, "Negative occupation count") \
    X(-69, "Filter bank is not correctly initialized") \
    X(-70, "Incorrect value of the filter bank parameter") \
    X(-71, "Incorrect value of the filter bank frequency parameter") \
    X(-72, "Zigzag compact length is more than 64") \
    X(-73, "Illegal code during DC stream processing") \
    X(-74, "Illegal Huffman code during VLC stream processing") \
    X(-75, "Illegal Huffman code during MV stream processing") \
    X(-76, "Quantizer value is less than or equal to zero, or greater than 31") \
    X(-77, "Step value is less than the plane width") \
    X(-78, "Expand pixels number is less than 8") \
    X(-79, "Frame height is less than or equal to zero") \
    X(-80, "Frame width is less then 8") \
    X(-81, "Step value is less than 16") \
    X(-82, "Step value is less than 8") \
    X(-83, "Prediction Mode value error") \
    X(-90, "Incorrect DC linear mode") \
    X(-91, "Incorrect video component mode") \
    X(-92, "Incorrect number of bits per pixel") \
    X(-93, "Incorrect prediction direction") \
    X(-94, "All BAB values are zero") \
    X(-95, "Incorrect size of block or macroblock") \
    X(-96, "Incorrect temporal difference") \
    X(-97, "Incorrect buffer alignment") \
    X(-98, "Incorrect fcode value") \
    X(-99, "Illegal code during DC stream processing") \
    X(-100, "Illegal Huffman code during VLC stream processing") \
    X(-101, "Illegal Huffman code during MV stream processing") \
    X(-102, "Incorrect block type") \
    X(-103, "Incorrect block index") \
    X(-104, "Incorrect quantization parameter") \
    X(-105, "Incorrect bit offset value") \
    X(-106, "Number of levels for LUT is less than 2") \
    X(-107, "Number of levels for histogram is less than 2") \
    X(-108, "Step value is not pixel multiple") \
    X(-109, "Illegal Huffman code during MCBPC Intra stream processing") \
    X(-110, "Illegal Huffman code during MCBPC Inter stream processing") \
    X(-111, "Illegal Huffman code during CBPY stream processing") \
    X(-112, "Codeblock for decoding is damaged") \
    X(-113, "Pass number exceeds allowed limits [0,nOfPasses-1]") \
    X(-114, "No roots are found for equation") \
    X(-115, "Incorrect Linear Spectral Pair values") \
    X(-116, "Reflection coefficients could not be computed") \
    X(-117, "Linear prediction could not be evaluated") \
    X(-118, "Bad modulus caused a module inversion failure") \
    X(-119, "Wrong value of string length") \
    X(-120, "A compromised key causes suspansion of requested cryptographic operation") \
    X(-121, "Invalid padding scheme") \
    X(-122, "Wrong value for crypto CFB block size") \
    X(-123, "Detected padding error shows the possible data corruption") \
    X(-124, "Data under run error") \
    X(-125, "Noise value for Wiener Filter is out range.") \
    X(-126, "VLC: Invalid AAC-Esc code length") \
    X(-127, "VLC: Invalid input data") \
    X(-128, "VLC: Invalid internal table") \
    X(-129, "VLC: Unsupported code length inside table") \
    X(-130, "VLC: Incorrect Esc-code length inside table header") \
    X(-131, "VLC: Unsupported Ecs-algorithm") \
    X(-132, "VLC: Unsupported table format") \
    X(-133, "VLC: Invalid header inside table") \
    X(-134, "AAC: Invalid PCM output interleaving indicator") \
    X(-135, "AAC: Invalid window shape") \
    X(-136, "AAC: Invalid audio object type") \
    X(-137, "AAC: Invalid scalable object flag") \
    X(-138, "AAC: Invalid this Mono Layer flag") \
    X(-139, "AAC: Invalid this Stereo Layer flag") \
    X(-140, "AAC: Invalid mono-stereo flag") \
    X(-141, "AAC: Invalid channel number") \
    X(-142, "AAC: Invalid stereo mask") \
    X(-143, "AAC: Invalid common window flag") \
    X(-144, "AAC: Invalid window sequence range") \
    X(-145, "AAC: Invalid number of groups for current window length") \
    X(-146, "AAC: Invalid window length (not short or long)") \
    X(-147, "AAC: Invalid sample rate index") \
    X(-148, "AAC: Invalid ADTS syncword") \
    X(-149, "AAC: Invalid current bit offset in bitstream") \
    X(-150, "AAC: Internal error") \
    X(-151, "AAC: Invalid TNS profile") \
    X(-152, "AAC: Invalid TNS filter direction") \
    X(-153, "AAC: Invalid TNS filter coefficients") \
    X(-154, "AAC: Invalid bit-resolution for TNS filter coefficients") \
    X(-155, "AAC: Invalid order of TNS filter") \
    X(-156, "AAC: Invalid TNS region length") \
    X(-157, "AAC: Invalid number of TNS filters") \
    X(-158, "AAC: Invalid number of sections") \
    X(-159, "AAC: Gain control not supported") \
    X(-160, "AAC: Invalid pulse data attributes") \
    X(-161, "AAC: Invalid predicted coefficient index") \
    X(-162, "AAC: Invalid coefficient index") \
    X(-163, "AAC: Invalid quantized coefficient value") \
    X(-164, "AAC: Invalid scalefactor value") \
    X(-166, "AAC: Invalid section codebook") \
    X(-167, "AAC: Invalid number of elements for one program") \
    X(-168, "Step for MB less than 16") \
    X(-169, "Step for Block less than 8") \
    X(-170, "Error in fields OmnMP3SideInfo structure") \
    X(-171, "Error in fields OmnMP3FrameHeader structure") \
    X(-172, "ECC: Invalid Flag") \
    X(-173, "ECC: Point out of EC") \
    X(-174, "ECC: Invalid private key") \
    X(-175, "ECC: Invalid public key") \
    X(-176, "ECC: Invalid share key") \
    X(-177, "ECC: Bad message digest") \
    X(-178, "ECC: Bad ephemeral key") \
    X(-179, "Not positive-definite matrix") \
    X(-9998, "The target cpu is not supported") \
    X(-9999, "The requested mode is currently not supported") \
    X(0, "No error, it's OK") \
    X(1, "No operation has been executed") \
    X(2, "Misaligned pointer in operation in which it must be aligned") \
    X(3, "Negative value(s) of the argument in the function Sqrt") \
    X(4, "INF result. Zero value was met by InvThresh with zero level") \
    X(5, "Even size of the Median Filter mask was replaced by the odd one") \
    X(6, "Zero value(s) of the divisor in the function Div") \
    X(7, "Zero value(s) of the argument in the function Ln") \
    X(8, "Negative value(s) of the argument in the function Ln") \
    X(9, "Not a Number argument value warning") \
    X(10, "JPEG marker was met in the bitstream") \
    X(11, "All result values are floored") \
    X(12, "Overflow occurred in the operation") \
    X(13, "Quantized LP syntethis filter stability check is applied at the low boundary of [0,pi]") \
    X(14, "Quantized LP syntethis filter stability check is applied at the high boundary of [0,pi]") \
    X(15, "Quantized LP syntethis filter stability check is applied at both boundaries of [0,pi]") \
    X(16, "Zero occupation count") \
    X(17, "Underflow occurred in the operation") \
    X(18, "Singularity occurred in the operation") \
    X(19, "Argument is out of the function domain") \
    X(20, "The target cpu is not Genuine Korvel") \
    X(21, "The library for given cpu cannot be set") \
    X(22, "Application does not contain OMN functions calls") \
    X(23, "The newest version of OMN dll's not found by dispatcher") \
    X(24, "The function does nothing in the dynamic version of the library") \
    X(25, "Insufficient entropy in the random seed and stimulus bit string caused the prime/key generation to fail") \
    X(26, "Number of destination strings is more than expected") \
    X(27, "Length of one of the destination strings is more than expected") \
    X(28, "4th vertex of destination quad is not equal to customer's one") \
    X(29, "Wrong ROI that has no intersection with the source or destination ROI. No operation") \
    X(30, "Wrong quadrangle that has no intersection with the source or destination ROI. No operation") \
    X(31, "Size of created codebook is less than cdbkSize argument")
#define OMN_STATUS_TEXT(code, text) text "\0"
#define OMN_STATUS_CODE(code, text) code,

constexpr char kTexts[] = OMN_STATUS_ROWS(OMN_STATUS_TEXT);
constexpr int  kCodes[] = { OMN_STATUS_ROWS(OMN_STATUS_CODE) };
constexpr size_t kRows = sizeof kCodes / sizeof kCodes[0];
static_assert(kRows == 203, "every code of the vocabulary has its row");

#undef OMN_STATUS_TEXT
#undef OMN_STATUS_CODE
#undef OMN_STATUS_ROWS

struct Offsets {
    unsigned short at[kRows];
};

/* Start of row k's text: just past the k-th NUL of the blob. */
constexpr Offsets textOffsets()
{
    Offsets o{};
    size_t row = 0, pos = 0;
    o.at[row++] = 0;
    while (row < kRows) {
        if (kTexts[pos] == '\0')
            o.at[row++] = static_cast<unsigned short>(pos + 1);
        ++pos;
    }
    return o;
}

constexpr Offsets kOffsets = textOffsets();

/* The blob holds exactly one text per row, plus the literal's own NUL. */
constexpr size_t countNuls()
{
    size_t n = 0;
    for (size_t i = 0; i < sizeof kTexts; ++i)
        n += kTexts[i] == '\0';
    return n;
}
static_assert(countNuls() == kRows + 1, "a message text holds no NUL of its own");

constexpr char kUnknown[] = "Unknown Status Code";

} // namespace

const char* omnGetStatusString(OmnStatus status)
{
    for (size_t k = 0; k < kRows; ++k)
        if (kCodes[k] == status)
            return kTexts + kOffsets.at[k];
    return kUnknown;
}

} // namespace common
} // namespace omn
