#include "tessera/core/date_range.h"

#include <cstdint>
#include <cstdlib>
#include <limits>

#include "tessera/core/numeric_cast.h"
#include "tessera/platform/logger.h"

namespace MERVO::Tessera {
namespace {

constexpr std::int32_t NOT_GIVEN = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t LONGEST = 1000000;

struct Request {
    std::int32_t start;
    std::int32_t end;
    std::uint32_t periods;
    std::int32_t step;
};

bool IsGiven(std::int32_t stamp) { return stamp != NOT_GIVEN; }

/// What is wrong with a request, or null.
const char* FaultOf(const Request& request)
{
    const auto& [start, end, periods, step] = request;
    if (periods == 0) {
        if (!IsGiven(start) || !IsGiven(end) || !IsGiven(step) || step == 0) {
            return "Error to generate a valid length of dateRange, Invalid parameters";
        }
        const bool leadsAway = (start > end && step > 0) || (start < end && step < 0);
        return leadsAway ? "The date_range param is invalid when periods is 0" : nullptr;
    }
    if (!IsGiven(step)) {
        return IsGiven(start) && IsGiven(end) ? nullptr : "The date_range param is invalid when freq is invalid";
    }
    if (!IsGiven(end)) {
        return IsGiven(start) ? nullptr : "The date_range param is invalid when end is invalid";
    }
    return IsGiven(start) ? "Only three valid params needed in DateRange" : nullptr;
}

std::uint32_t LengthOf(const Request& request)
{
    if (request.periods != 0) {
        return request.periods;
    }
    const std::int64_t distance = std::abs(std::int64_t{request.end} - request.start);
    return static_cast<std::uint32_t>(distance / std::abs(std::int64_t{request.step}) + 1);
}

/// first, first + step, and so on, wrapping in 32 bits.
std::vector<DateTime> CountUp(std::uint32_t first, std::int32_t step, std::uint32_t length)
{
    std::vector<DateTime> moments;
    moments.reserve(length);
    for (std::uint32_t i = 0; i < length; ++i) {
        moments.emplace_back(static_cast<std::int32_t>(first + i * static_cast<std::uint32_t>(step)));
    }
    return moments;
}

/// `length` moments from start to end, more than 1 of them.
std::vector<DateTime> Divide(std::int32_t start, std::int32_t end, std::uint32_t length)
{
    const double first = start;
    const double step = (static_cast<double>(end) - first) / (static_cast<double>(length) - 1.0);
    std::vector<DateTime> moments;
    moments.reserve(length);
    for (std::uint32_t i = 0; i < length; ++i) {
        moments.emplace_back(ConvertNumber<std::int32_t>(static_cast<double>(i) * step + first));
    }
    return moments;
}

} // namespace

std::vector<DateTime> DateRange(
    const DateTime& start, const DateTime& end, const unsigned int& periods, const DateTime& freq)
{
    const Request request = {static_cast<std::int32_t>(start.TimeStamp()), static_cast<std::int32_t>(end.TimeStamp()),
        periods, static_cast<std::int32_t>(freq.TimeStamp())};
    if (const char* fault = FaultOf(request)) {
        LogError("%s", fault);
        LogError("Check Params Failed in DateRange");
        return {};
    }
    const std::uint32_t length = LengthOf(request);
    if (length > LONGEST) { // taken as signed, lengths beyond 31 bits are below 0
        LogError("the length of DateTime list has exceed the max tolerance of vector");
        return {};
    }
    const auto first = static_cast<std::uint32_t>(request.start);
    if (!IsGiven(request.step)) {
        return length == 1 ? std::vector<DateTime>{start} : Divide(request.start, request.end, length);
    }
    if (!IsGiven(request.start)) {
        const auto last = static_cast<std::uint32_t>(request.end);
        return CountUp(last - (length - 1) * static_cast<std::uint32_t>(request.step), request.step, length);
    }
    return CountUp(first, request.step, length);
}

} // namespace MERVO::Tessera
