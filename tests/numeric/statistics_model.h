#pragma once

#include "tessera/numeric/power.h"
#include "tests/numeric/statistics.h"

namespace MERVO::Tessera {

/// The statistics in their plainest form: one loop for each sum, element after element.
template <typename T>
struct StatisticsModel {
    using Real = StatisticOf<T>;

    explicit StatisticsModel(const std::vector<T>& cells)
    {
        for (const T cell : cells) {
            elements.push_back(static_cast<Real>(cell));
        }
        for (const Real element : elements) {
            ReductionModel<Real>::template Add<Real>(mean, element / static_cast<Real>(elements.size()));
        }
    }

    /// A NaN that stands for that of the mean, if the mean is one.
    Real Narrow(double statistic) const
    {
        return std::isnan(statistic) && std::isnan(mean) ? mean : static_cast<Real>(Plain(statistic));
    }

    double SumOfSquares() const
    {
        double sum = 0.0;
        for (const Real element : elements) {
            const Real difference = element - mean;
            sum += static_cast<double>(difference) * static_cast<double>(difference);
        }
        return sum;
    }

    Real Var(std::uint32_t ddof) const
    {
        return Narrow(SumOfSquares() / (static_cast<double>(elements.size()) - static_cast<double>(ddof)));
    }

    Real Std(std::uint32_t ddof) const
    {
        const auto divisor = static_cast<std::uint32_t>(elements.size() - ddof);
        return divisor == 0 ? std::numeric_limits<Real>::quiet_NaN()
                            : Narrow(std::sqrt(SumOfSquares() / static_cast<double>(divisor)));
    }

    Real Moment(std::uint32_t degree) const
    {
        double sum = 0.0;
        for (const Real element : elements) {
            const Real difference = element - mean;
            sum += Func::WholePower(static_cast<double>(difference), degree);
        }
        return Narrow(sum / static_cast<double>(elements.size()));
    }

    Real Kstat(std::uint32_t degree) const
    {
        std::vector<Real> powers(elements.size(), Real{1});
        std::vector<Real> sums{Real{0}};
        for (std::uint32_t j = 1; j <= degree; ++j) {
            Real sum{0};
            for (std::size_t i = 0; i < elements.size(); ++i) {
                powers[i] *= elements[i];
                ReductionModel<Real>::template Add<Real>(sum, powers[i]);
            }
            sums.push_back(sum);
        }
        const Real leading = sums[degree == 2 ? 2 : 1]; // the first operand of the formula
        const Real statistic = KstatOf(sums, degree);
        return std::isnan(statistic) && std::isnan(leading) ? leading : Plain(statistic);
    }

    /// The two sums of a pass over the deviations of what is present.
    struct Shape {
        std::vector<double> present;
        double mean = 0.0;
        bool isUndefined = false;
    };

    Shape Present(bool skipNan) const
    {
        Shape shape;
        double sum = 0.0;
        for (const Real element : elements) {
            if (!std::isnan(element)) {
                shape.present.push_back(static_cast<double>(element));
                sum += static_cast<double>(element);
            } else {
                shape.isUndefined = shape.isUndefined || !skipNan;
            }
        }
        shape.isUndefined = shape.isUndefined || shape.present.empty();
        shape.mean = sum / static_cast<double>(shape.present.size());
        return shape;
    }

    Real Skew(bool skipNan, bool bias) const
    {
        const Shape shape = Present(skipNan);
        if (shape.isUndefined) {
            return std::numeric_limits<Real>::quiet_NaN();
        }
        const auto n = static_cast<double>(shape.present.size());
        double third = 0.0;
        double second = 0.0;
        for (const double element : shape.present) {
            const double d = element - shape.mean;
            third += d * (d * d) / n;
            second += d * d / n;
        }
        const bool isFlat = std::fabs(second) < 2.220446049250313e-16;
        double result = 0.0;
        if (bias) {
            result = isFlat ? 0.0 : third / Func::PowerOneAndAHalf(second);
        } else if (isFlat || shape.present.size() == 2) {
            return std::numeric_limits<Real>::quiet_NaN();
        } else {
            const std::uint64_t c = shape.present.size();
            result = std::sqrt(static_cast<double>(c * (c - 1))) * third / ((n - 2.0) * Func::PowerOneAndAHalf(second));
        }
        return static_cast<Real>(WithoutTraces(result));
    }

    Real Kurt(bool skipNan, bool bias) const
    {
        const Shape shape = Present(skipNan);
        if (shape.isUndefined || (!bias && shape.present.size() < 4)) {
            return std::numeric_limits<Real>::quiet_NaN();
        }
        const auto n = static_cast<double>(shape.present.size());
        double fourth = 0.0;
        double second = 0.0;
        for (const double element : shape.present) {
            const double d = element - shape.mean;
            fourth += (d * d) * (d * d);
            second += d * d;
        }
        if (bias) {
            const double v = second / n;
            return static_cast<Real>(
                std::fabs(second) < 2.220446049250313e-16 ? -3.0 : WithoutTraces(fourth / n / (v * v) - 3.0));
        }
        double a = (n + 1.0) * n * (n - 1.0) * fourth;
        a = std::fabs(a) < 1e-14 ? 0.0 : a;
        const double b = (n - 2.0) * (n - 3.0);
        const double c = second * second * b;
        return static_cast<Real>(std::fabs(c) < 1e-14 ? 0.0 : Plain(a / c - (n - 1.0) * (n - 1.0) * 3.0 / b));
    }

    std::vector<Real> elements;
    Real mean{0};

private:
    static double WithoutTraces(double result)
    {
        return std::fabs(result) > (sizeof(Real) == 8 ? 2.220446049250313e-16 : 1.1920928955078125e-07) ? result : 0.0;
    }

    Real KstatOf(const std::vector<Real>& s, std::uint32_t degree) const
    {
        const auto n = static_cast<Real>(elements.size());
        if (degree == 1) {
            return s[1] / n;
        }
        if (degree == 2) {
            return (n * s[2] - s[1] * s[1]) / n / (n - 1);
        }
        if (degree == 3) {
            const double cube = Func::WholePower(static_cast<double>(s[1]), 3);
            const Real second = 3 * n * s[1] * s[2];
            const Real last = n * n * s[3];
            const auto sum = static_cast<Real>(cube + cube - static_cast<double>(second) + static_cast<double>(last));
            return sum / n / (n - 1) / (n - 2);
        }
        const Real first = 12 * n * s[1] * s[1] * s[2];
        const Real third = 3 * n * (n - 1) * s[2] * s[2];
        const Real fourth = 4 * n * (n + 1) * s[1] * s[3];
        const Real last = n * n * (n + 1) * s[4];
        const double power = Func::WholePower(static_cast<double>(s[1]), 4);
        const auto sum = static_cast<Real>(static_cast<double>(first) - 6 * power - static_cast<double>(third) -
            static_cast<double>(fourth) + static_cast<double>(last));
        return sum / n / (n - 1) / (n - 2) / (n - 3);
    }
};

} // namespace MERVO::Tessera
