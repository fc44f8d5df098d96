#pragma once

#include "tessera/functors/functor.h"

namespace MERVO::Tessera::Func {

namespace Arith {

enum ArithOpType : std::uint32_t { ADDITION = 0, SUBTRACTION = 1, MULTIPLICATION = 2, DIVISION = 3, REMAINDER = 4 };

} // namespace Arith

/**
 * An arithmetic operation on two columns of one value type, cell by cell; the result is of that type too.
 *
 * Columns have the same length, or one of them has one row, which stands for all rows. Deliberately, one row on the
 * left of several in arrays gives as many copies of the first result; where a list takes part, it meets every row.
 *
 * Integers wrap; those of 8 and 16 bits are computed in 32. Division truncates toward zero, the remainder has the
 * dividend's sign; by zero the quotient is 0 and the remainder the dividend, and the smallest integer divided by -1
 * wraps to itself. Float and double are IEEE 754's, the remainder is fmod's. A NaN among the operands goes through,
 * quiet, the left one if there are two; one that comes about is positive and has no payload. DateTime can be added and
 * subtracted, by stamps that wrap at 32 bits; strings can be added, which joins them. Nested tables are computed table
 * by table, and a failure stays in the cell. A side without rows against one row gives a zero or empty cell, and a
 * warning in the log.
 *
 * Code 21: lengths or value types don't fit. Code 1, with a message in the log: the operation does not serve the value
 * type.
 */
template <ContainerID CID, Arith::ArithOpType OP>
class TESSERA_API BinaryArith : public Binary<BinaryArith<CID, OP>, MutableArgs::SOURCE> {
public:
    static constexpr bool kValueTypesAlterKernel = false;

    std::string GetName() const override;
    SeriesAttr GetDstAttr(const Cursor& lhs, const Cursor& rhs) const override;
    bool CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const override;
    template <typename T>
    ErrorCode OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
    template <typename T>
    ErrorCode OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const;
};

template <ContainerID CID>
class Add final : public BinaryArith<CID, Arith::ADDITION> {
};

template <ContainerID CID>
class Sub final : public BinaryArith<CID, Arith::SUBTRACTION> {
};

template <ContainerID CID>
class Mul final : public BinaryArith<CID, Arith::MULTIPLICATION> {
};

template <ContainerID CID>
class Div final : public BinaryArith<CID, Arith::DIVISION> {
};

template <ContainerID CID>
class Mod final : public BinaryArith<CID, Arith::REMAINDER> {
};

extern template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::ADDITION>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::SUBTRACTION>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::MULTIPLICATION>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::DIVISION>, MutableArgs::SOURCE>::transformTable;
extern template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::REMAINDER>, MutableArgs::SOURCE>::transformTable;
extern template class BinaryArith<CONTAINER_ARRAY, Arith::ADDITION>;
extern template class BinaryArith<CONTAINER_ARRAY, Arith::SUBTRACTION>;
extern template class BinaryArith<CONTAINER_ARRAY, Arith::MULTIPLICATION>;
extern template class BinaryArith<CONTAINER_ARRAY, Arith::DIVISION>;
extern template class BinaryArith<CONTAINER_ARRAY, Arith::REMAINDER>;

} // namespace MERVO::Tessera::Func
