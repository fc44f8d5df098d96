#include "tessera/core/cell_text.h"

#include <array>
#include <bit>
#include <cerrno>
#include <clocale>
#include <cmath>
#include <cstdio>
#include <cstdlib>
#include <limits>
#include <memory>
#include <random>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "tessera/core/number_texts.h"

// The C library is the oracle throughout: it is what the results are defined by.
namespace MERVO::Tessera {
namespace {

constexpr int ROUNDS = 40000;
constexpr double DENORMAL = std::numeric_limits<double>::denorm_min();
constexpr double NORMAL = std::numeric_limits<double>::min();
constexpr double LARGEST = std::numeric_limits<double>::max();
constexpr double INFINITE = std::numeric_limits<double>::infinity();
constexpr double NOT_A_NUMBER = std::numeric_limits<double>::quiet_NaN();

using Random = std::mt19937_64;

template <typename... T>
std::string Format(const char* format, T... values)
{
    std::vector<char> text(1200);
    const int length = std::snprintf(text.data(), text.size(), format, values...);
    return std::string(text.data(), static_cast<std::size_t>(length));
}

/// Calls a writer on a buffer of just the promised room.
template <typename T, typename Writer>
std::string Written(Writer write, T value)
{
    constexpr bool IS_SHORT = std::is_floating_point_v<T> || sizeof(T) <= sizeof(std::int32_t);
    const auto room = std::make_unique<char[]>(IS_SHORT ? SHORT_NUMBER_ROOM : NUMBER_TEXT_ROOM);
    return std::string(room.get(), write(room.get(), value));
}

std::string WrittenScientific(double value) { return Written(WriteScientific, value); }

std::string TextOf(const NumberText& text) { return std::string(text.characters.data(), text.size); }

/// Alone, and at each place among several, whose own texts stay right.
void ExpectScientificAsPrintf(double value)
{
    const std::string expected = Format("%.5e", value);
    ASSERT_EQ(WrittenScientific(value), expected) << Format("%a", value);
    for (std::size_t place = 0; place < 5; ++place) {
        std::array<double, 5> values = {-1.0, 99999.95, 0.0, 1e-99, -6.02214e23};
        std::array<std::string, 5> texts = {
            "-1.00000e+00", "9.99999e+04", "0.00000e+00", "1.00000e-99", "-6.02214e+23"};
        values[place] = value;
        texts[place] = expected;
        std::array<NumberText, 5> written;
        WriteScientifics(values.data(), values.size(), written.data());
        for (std::size_t i = 0; i < values.size(); ++i) {
            ASSERT_EQ(TextOf(written[i]), texts[i]) << Format("%a", value) << " at " << place;
        }
    }
}

// ---- Writing

template <typename T>
class WriteIntegerTest : public testing::Test {
};
using IntegersWritten = testing::Types<std::int32_t, std::uint32_t, std::int64_t, std::uint64_t>;
TYPED_TEST_SUITE(WriteIntegerTest, IntegersWritten);

TYPED_TEST(WriteIntegerTest, EveryLengthAndBothEnds)
{
    using Limits = std::numeric_limits<TypeParam>;
    std::vector<TypeParam> values = {0, Limits::min(), Limits::max()};
    for (TypeParam power = 1;; power = static_cast<TypeParam>(power * 10)) {
        for (const TypeParam value : {static_cast<TypeParam>(power - 1), power, static_cast<TypeParam>(power + 1)}) {
            values.push_back(value);
            values.push_back(static_cast<TypeParam>(0 - value));
        }
        if (power > Limits::max() / 10) {
            break;
        }
    }
    Random random(1);
    for (int i = 0; i < ROUNDS; ++i) {
        values.push_back(static_cast<TypeParam>(random() >> (random() % 64)));
    }
    const auto write = [](char* first, TypeParam value) { return WriteInteger(first, value); };
    for (const TypeParam value : values) {
        ASSERT_EQ(Written(write, value), std::to_string(value));
    }
    if constexpr (sizeof(TypeParam) == sizeof(std::int32_t)) {
        std::vector<NumberText> texts(values.size());
        WriteIntegers(values.data(), values.size(), texts.data());
        for (std::size_t i = 0; i < values.size(); ++i) {
            ASSERT_EQ(TextOf(texts[i]), std::to_string(values[i])) << "at " << i;
        }
    }
}

TEST(WriteScientific, Floats)
{
    Random random(4);
    std::vector<float> values;
    for (int i = 0; i < ROUNDS; ++i) {
        values.push_back(std::bit_cast<float>(static_cast<std::uint32_t>(random())));
    }
    std::vector<NumberText> texts(values.size());
    WriteScientifics(values.data(), values.size(), texts.data());
    for (std::size_t i = 0; i < values.size(); ++i) {
        ASSERT_EQ(TextOf(texts[i]), Format("%.5e", static_cast<double>(values[i]))) << "at " << i;
    }
}

TEST(WriteScientific, SpecialValues)
{
    const double cases[] = {0.0, -0.0, INFINITE, -INFINITE, NOT_A_NUMBER, -NOT_A_NUMBER, DENORMAL, -DENORMAL, NORMAL,
        LARGEST, -LARGEST, 0.5, 1.5, 2.5e-6, 999999.5, 9.999995, 9.9999949999, 999999.4999999999, 99999.95, 1e22, 1e23};
    for (const double value : cases) {
        ExpectScientificAsPrintf(value);
    }
}

TEST(WriteScientific, PowersOfTwoAndTenWithTheirNeighbours)
{
    std::vector<double> values;
    for (int exponent = -1074; exponent <= 1023; ++exponent) {
        values.push_back(std::ldexp(1.0, exponent));
    }
    for (int exponent = -323; exponent <= 308; ++exponent) {
        values.push_back(std::strtod(Format("1e%d", exponent).c_str(), nullptr));
    }
    for (const double value : values) {
        ExpectScientificAsPrintf(value);
        ExpectScientificAsPrintf(std::nextafter(value, 0.0));
        ExpectScientificAsPrintf(-std::nextafter(value, INFINITE));
    }
}

TEST(WriteScientific, RandomBits)
{
    Random random(2);
    for (int i = 0; i < ROUNDS; ++i) {
        ExpectScientificAsPrintf(std::bit_cast<double>(random()));
    }
}

// The seventh digit is a 5: a tie where the double is exact, and else decided by what comes after.
TEST(WriteScientific, Halves)
{
    Random random(3);
    for (int i = 0; i < ROUNDS / 8; ++i) {
        const auto sixDigits = static_cast<double>(100000 + random() % 900000);
        const auto half = sixDigits * 10 + 5;
        const int exponent = static_cast<int>(random() % 616) - 320;
        const double decimal = std::strtod(Format("%.0fe%d", half, exponent).c_str(), nullptr);
        const double cases[] = {half, half * 1000, half * 1e9, std::ldexp(half, 40), sixDigits + 0.5,
            std::floor(sixDigits / 10) + 0.25, std::floor(sixDigits / 100) + 0.125, decimal,
            std::nextafter(decimal, 0.0), std::nextafter(decimal, INFINITE)};
        for (const double value : cases) {
            ExpectScientificAsPrintf(value);
        }
    }
}

// Found by lattice reduction: within 2^-45 of a half, so 64 bits of a power of ten don't tell the side.
TEST(WriteScientific, NearlyHalves)
{
    const double cases[] = {0x1.6db63e4c19c35p-1000, 0x1.30446dacd85e6p-1000, 0x1.4f6e9ac885dc4p-700,
        0x1.6d037dfac36fap-300, 0x1.824513688bfcep-120, 0x1.29bf4eab93af7p-95, 0x1.795eb8fdba367p+66,
        0x1.b8439efac4487p+66, 0x1.823716d33f3b8p+100, 0x1.34012eb3ff156p+100, 0x1.017439dd3713bp+200,
        0x1.e0d76054e1161p+500, 0x1.ea190ab675ab1p+500, 0x1.6bc5755be8663p+900, 0x1.a7fa254d7956ep+900,
        0x1.1092144928becp+1020, 0x1.41bc68c9ae0fdp-80};
    for (const double value : cases) {
        ExpectScientificAsPrintf(value);
    }
}

// ---- Parsing

template <typename T>
struct Outcome {
    T value;
    int error;

    /// Compares NaN and zeros by their bits.
    friend bool operator==(const Outcome& left, const Outcome& right)
    {
        if constexpr (std::is_same_v<T, double>) {
            return std::bit_cast<std::uint64_t>(left.value) == std::bit_cast<std::uint64_t>(right.value) &&
                left.error == right.error;
        } else {
            return left.value == right.value && left.error == right.error;
        }
    }
    friend std::ostream& operator<<(std::ostream& stream, const Outcome& outcome)
    {
        return stream << outcome.value << " with error " << outcome.error;
    }
};

template <typename Parser>
auto OutcomeOf(Parser parse, const std::string& text)
{
    const std::string followed = text + "7"; // which belongs to nobody
    errno = -1;
    const auto parsed = parse(std::string_view(followed.data(), text.size()));
    EXPECT_EQ(errno, -1) << "errno is the host's";
    return Outcome<decltype(parsed.value)>{parsed.value, parsed.error};
}

template <typename T, typename Parser>
Outcome<T> OutcomeInC(Parser parse, const std::string& text)
{
    errno = 0;
    const T value = parse(text.c_str());
    return {value, errno};
}

Outcome<double> DoubleInC(const std::string& text)
{
    return OutcomeInC<double>([](const char* start) { return std::strtod(start, nullptr); }, text);
}

void ExpectAllAsInC(const std::string& text)
{
    const auto wantedSigned =
        OutcomeInC<std::int64_t>([](const char* start) { return std::strtoll(start, nullptr, 10); }, text);
    const auto wantedUnsigned =
        OutcomeInC<std::uint64_t>([](const char* start) { return std::strtoull(start, nullptr, 10); }, text);
    ASSERT_EQ(OutcomeOf(ParseSigned, text), wantedSigned) << '"' << text << '"';
    ASSERT_EQ(OutcomeOf(ParseUnsigned, text), wantedUnsigned) << '"' << text << '"';
    ASSERT_EQ(OutcomeOf(ParseDouble, text), DoubleInC(text)) << '"' << text << '"';
}

std::vector<std::string> NastyTexts()
{
    std::vector<std::string> texts = {"", " ", "   ", "+", "-", "+-5", "-+5", "--5", "- 5", "+ 5", "\t 7", "\n\v\f\r-8",
        "\x1f"
        "7",
        "\xa0"
        "7",
        "12abc", "abc", "A1", "/5", ":5", "1:2", "1/2", "0", "-0", "+0", "00", "007", "-007", "0x", "0X", "0x1p-3",
        "-0X1.8P1", "0x1.fffffffffffffp-1023", "0x1p-1074", "0x1p-1075", "0x1p1024", "00x5", "0x.8", "0xg", "infinity",
        "INFx", "-inf", "in", "i", "nan", "-NaN", "nan(12)", "nan(0x7ff)", "nan(", "nano", "+nan(99", "n", ".", "-.",
        ".5", "-.5", "5.", "5.e1", ".e5", "..5", "1..2", "1.2.3", "1,5", "1e", "1e+", "1e-", "1e+-5", "1ee5", "e5",
        "1e5", "1E5", "1e 5", "1e+05", "1e-005", "1e308", "1.7976931348623157e308", "1.7976931348623158e308",
        "1.7976931348623159e308", "1e309", "-1e400", "1e400", "1e99999", "1e-99999", "1e999999999999999999999",
        "1e-999999999999999999999", "0e999999999999999999999", "1e-307", "1e-308", "1e-310", "1e-323", "1e-324",
        "1e-400", "2.2250738585072014e-308", "2.2250738585072011e-308", "4.9406564584124654e-324",
        "9223372036854775806", "9223372036854775807", "9223372036854775808", "-9223372036854775807",
        "-9223372036854775808", "-9223372036854775809", "18446744073709551614", "18446744073709551615",
        "18446744073709551616", "-1", "-18446744073709551615", "-18446744073709551616", "99999999", "100000000",
        "123456789", "1234567890123456", "12345678901234567", "9007199254740992", "9007199254740993",
        "9007199254740995", "9007199254740993e3", "90071992547409930", "4503599627370496.5", "4503599627370497.5",
        "4503599627370497.4999999999999999999999999", "4503599627370497.5000000000000000000001", "1e22", "1e23",
        "9007199254740993e22", "1234567890123456789e-19", "9999999999999999999", "0.1", "0.30000000000000004",
        "123456789012345678901234567890", "-0.0000000000000000000000000000",
        "0.000000000000000000000000000000000000000000000001234", "2.5", "45.123456", "-45.123456", "1.50000e+00",
        "100000000000000000000000000000e-29", "0000000000000000000000000000000000000000000000000000000001"};
    texts.emplace_back(20, '9');
    texts.emplace_back(19, '9');
    texts.emplace_back(800, '9');
    texts.emplace_back(309, '7');
    texts.push_back("-" + std::string(800, '8'));
    texts.push_back(std::string(800, '0') + "42.5");
    texts.push_back("0." + std::string(800, '3'));
    texts.push_back("0." + std::string(400, '0') + "1e390");
    texts.push_back(std::string(200, '1') + "e-190");
    // Zeros and exponents beyond the point where some parsers stop counting.
    texts.push_back("0." + std::string(70000, '0') + "1234567890123456789012345e70000");
    texts.push_back("0." + std::string(70000, '0') + "1234567890123456789012345e700000");
    texts.push_back("1234567890123456789012345" + std::string(70000, '0') + "e-70000");
    texts.push_back("1234567890123456789012345" + std::string(70000, '0') + "e-700000");
    return texts;
}

TEST(ParseNumber, NastyTexts)
{
    for (const std::string& text : NastyTexts()) {
        ExpectAllAsInC(text);
    }
}

TEST(ParseNumber, NulEndsTheText)
{
    const auto joined = [](const std::string& text) { return text + '\0' + "2"; };
    EXPECT_EQ(ParseSigned(joined("1")).value, 1);
    EXPECT_EQ(ParseUnsigned(joined("1")).value, 1U);
    EXPECT_EQ(ParseSigned(joined("")).value, 0);
    EXPECT_EQ(ParseSigned(std::string_view()).value, 0);
    for (const char* text : {"1", "0x1", "1.00000000000000000000000"}) {
        EXPECT_EQ(ParseDouble(joined(text)).value, 1.0) << text;
    }
}

// Below the smallest normal number, but nearer to it than to the next one down. Machines differ here.
TEST(ParseNumber, RoundingUpToNormalIsARangeError)
{
    const std::string below = "2.22507385850720138309023271733240406421921598046233e-308";
    EXPECT_EQ(OutcomeOf(ParseDouble, below), (Outcome<double>{NORMAL, ERANGE}));
    EXPECT_EQ(OutcomeOf(ParseDouble, "2.2250738585072013e-308"), (Outcome<double>{NORMAL, ERANGE}));
    EXPECT_EQ(OutcomeOf(ParseDouble, "-" + below), (Outcome<double>{-NORMAL, ERANGE}));
    const std::string exact = "0x1p-1022";
    EXPECT_EQ(OutcomeOf(ParseDouble, exact), (Outcome<double>{NORMAL, 0}));
}

TEST(ParseNumber, RandomTexts)
{
    const std::string alphabet = "0123456789+-.eE xXpPaAnNiIfF()\t\n012345678901";
    Random random(4);
    for (int i = 0; i < ROUNDS; ++i) {
        std::string text(static_cast<std::size_t>(random() % 14), ' ');
        for (char& character : text) {
            character = alphabet[static_cast<std::size_t>(random() % alphabet.size())];
        }
        ExpectAllAsInC(text);
    }
}

TEST(ParseNumber, RandomIntegers)
{
    Random random(5);
    for (int i = 0; i < ROUNDS; ++i) {
        const auto value = static_cast<std::int64_t>(random()) >> (random() % 64);
        ExpectAllAsInC(std::to_string(value) + (i % 3 == 0 ? std::to_string(random() % 1000) : ""));
    }
}

TEST(ParseNumber, RandomDecimals)
{
    Random random(6);
    for (int i = 0; i < ROUNDS / 4; ++i) {
        const double bits = std::bit_cast<double>(random());
        const double value = std::ldexp(static_cast<double>(random()), -static_cast<int>(random() % 64));
        const int places = static_cast<int>(random() % 20);
        ExpectAllAsInC(Format("%.17g", bits));
        ExpectAllAsInC(Format("%.*e", places, bits));
        ExpectAllAsInC(Format("%.*f", places, value));
        ExpectAllAsInC(Format("%llue%d", static_cast<unsigned long long>(random() >> (random() % 64)),
            static_cast<int>(random() % 700) - 370));
    }
}

// Halfway between two neighbours, written out in full, and a step to either side.
TEST(ParseNumber, TiesOfIntegers)
{
    Random random(7);
    for (int i = 0; i < ROUNDS / 8; ++i) {
        const std::uint64_t halfway = (random() | (std::uint64_t{1} << 63)) >> 9 | 1; // 55 bits
        const int shift = static_cast<int>(random() % 9);
        for (const std::uint64_t value : {halfway << shift, (halfway << shift) - 1, (halfway << shift) + 1}) {
            ExpectAllAsInC(std::to_string(value));
            ExpectAllAsInC(std::to_string(value) + "." + std::string(10, '0'));
            ExpectAllAsInC(std::to_string(value) + "e" + std::to_string(random() % 30));
        }
    }
}

TEST(ParseNumber, ProcessLocaleMakesNoDifference)
{
    const std::string before = std::setlocale(LC_ALL, nullptr);
    const char* found = nullptr;
    for (const char* name : {"de_DE.UTF-8", "de_DE", "fr_FR.UTF-8", "nl_NL.UTF-8", "ru_RU.UTF-8", "pt_BR.UTF-8"}) {
        found = found != nullptr ? found : std::setlocale(LC_ALL, name);
    }
    if (found == nullptr) {
        GTEST_SKIP() << "no locale with a decimal comma is installed";
    }
    const double halves[] = {ParseDouble("2.5").value, ParseDouble("2,5").value, ParseDouble("0x2.8").value,
        ParseDouble("2.50000000000000000000000000").value};
    const std::string text = WrittenScientific(1.5);
    const std::string nearHalf = WrittenScientific(0x1.34012eb3ff156p+100);
    std::setlocale(LC_ALL, before.c_str());
    EXPECT_EQ(std::vector<double>(std::begin(halves), std::end(halves)), (std::vector<double>{2.5, 2.0, 2.5, 2.5}));
    EXPECT_EQ(text, "1.50000e+00");
    EXPECT_EQ(nearHalf, "1.52517e+30");
}

} // namespace
} // namespace MERVO::Tessera
