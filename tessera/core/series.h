#pragma once

#include <cstdint>
#include <memory>
#include <string>

#include "tessera/core/cursor.h"
#include "tessera/core/value_types.h"

namespace MERVO::Tessera {

/// A column of one value type and one container. Type, container and length never change.
class TESSERA_API BaseSeries {
public:
    virtual ~BaseSeries() = default;
    virtual std::uint32_t Size() const = 0;
    virtual MERVO_TESSERA_TYPEID GetTypeId() const = 0;
    /// Writes the elements from begin to before end to standard output, each followed by ", ", and a line end.
    virtual void Print(unsigned int begin, unsigned int end) const = 0;
    virtual std::string GetName() const = 0;
    virtual void SetName(const std::string& newName) = 0;
    virtual void SetName(std::string&& newName) = 0;
    /// A cursor on the whole column; null when memory is short, now or when the column was built.
    virtual Cursor GetIterator() = 0;
    /// A cursor on rows begin to before end. The two are not checked against the size.
    virtual Cursor GetIterator(unsigned int begin, unsigned int end) = 0;
    virtual SeriesAttr GetAttr() const = 0;
};

/// Deletes what it owns; with the flag clear it leaves alone, so that static objects travel in the same pointer.
template <typename T>
struct CustomizedDeleter {
    bool isOwner = true;
    void operator()(T* object) const
    {
        if (isOwner) {
            delete object;
        }
    }
};

using SeriesPtr = std::unique_ptr<BaseSeries, CustomizedDeleter<BaseSeries>>;

/**
 * Makes a column with the given length, container, value type and name.
 *
 * Numbers start uninitialised in an array and zero in a list; bools false, strings and nested tables empty.
 * @return the column. With a type or container out of range, or no memory: the error column, whose type is -1.
 */
TESSERA_API SeriesPtr BuildSeries(const SeriesAttr& attr, std::string name);

/// The one error column, not owned by the pointer. It logs each use, and answers with nothing: type -1, no cursor.
TESSERA_API SeriesPtr GetErrorSeries();

/**
 * Copies all elements of a cursor's range to another column, whatever the containers of the two.
 *
 * Both must hold the same value type, which is not checked. Copying ends where the shorter one does; where dst is as
 * long as src, both cursors are spent afterwards.
 * @return false, with an error in the log, when a cursor is null or tells a value type or container that is none.
 */
TESSERA_API bool Copy2Series(const Cursor& src, const Cursor& dst);

} // namespace MERVO::Tessera
