#pragma once

#include <cstdint>
#include <functional>
#include <string>

#include "tessera/core/data_frame.h"
#include "tessera/functors/functor_base.h"

namespace MERVO::Tessera {

/// The words in which an evaluation of groups tells its failures.
struct ResultTexts {
    const char* containerChange; ///< stored
    const char* failure;         ///< logged, with the functor's name and the column's position
};
inline constexpr ResultTexts APPLY_TEXTS{"container type is changed", "Execute functor %s on index %d failed"};
inline constexpr ResultTexts TRANSFORM_TEXTS{
    "the container type is changed", "Failed to execute functor %s on index %d"};

/// Builds a column. Returns 0, also where the value type is none, which gives the error column; 3 without memory.
ErrorCode BuildColumn(const SeriesAttr& attr, const std::string& name, SeriesPtr& result);

/// A column to be evaluated.
struct SourceColumn {
    const Cursor& rows;
    const std::string& name;
    std::uint32_t position;
};

/**
 * Builds a column of `length` rows of what a functor makes of another one, and has it filled.
 * @param run fills the column; returns 0 or a code.
 * @return code 0 with the column in `result`; 2: the functor changes the container; 3: no memory; or run's.
 */
Error EvaluateColumn(const UnaryFactory& creator, const SourceColumn& source, std::uint32_t length,
    const ResultTexts& texts, const std::function<ErrorCode(const Func::UnaryBase&, const SeriesPtr&)>& run,
    SeriesPtr& result);

/// A table that holds a failure of code 2, which is told to the log too.
DataFrame RefuseGroups(const char* text);

inline constexpr const char* TRANSFORM_REFUSAL =
    "Transform with the input functor is forbbiden, since the dst series size is not equal to sample number";

} // namespace MERVO::Tessera
