#include "tessera/functors/arithmetic.h"

#include "tessera/core/data_frame.h"
#include "tessera/core/date_time.h"
#include "tessera/functors/arithmetic_kernels.h"
#include "tessera/functors/broadcast.h"

namespace MERVO::Tessera::Func {
namespace {

CellKernel KernelFor(Arith::ArithOpType operation, const Cursor& cursor)
{
    return KernelsOf(operation)[static_cast<std::size_t>(cursor->GetAttr().typeId)];
}

bool HasCells(const Cursor& lhs, const Cursor& rhs) { return lhs->Length() != 0 && rhs->Length() != 0; }

/// Computes arrays, or declines.
ErrorCode ComputeArrays(Arith::ArithOpType operation, const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    const CellKernel kernel = KernelFor(operation, lhs);
    if (kernel == nullptr) {
        LogError("value Type: %s is an invalid type for this op.", GetTypeNameById(lhs->GetAttr().typeId).c_str());
        return ERROR_GENERAL;
    }
    if (!HasCells(lhs, rhs)) {
        return ERROR_GENERAL;
    }
    const bool isLeftOne = lhs->Length() == 1;
    ForEachBlock(lhs, rhs, dst, {isLeftOne, isLeftOne || rhs->Length() == 1}, kernel);
    return ERROR_NONE;
}

/// Computes cells in any containers.
ErrorCode ComputeCells(
    const FunctorBase& functor, Arith::ArithOpType operation, const Cursor& lhs, const Cursor& rhs, const Cursor& dst)
{
    const CellKernel kernel = KernelFor(operation, lhs);
    if (kernel == nullptr) {
        LogError("this op does not support value Type: %s.", GetTypeNameById(lhs->GetAttr().typeId).c_str());
        return ERROR_GENERAL;
    }
    if (HasCells(lhs, rhs)) {
        ForEachBlock(lhs, rhs, dst, {lhs->Length() == 1, rhs->Length() == 1}, kernel);
    } else if (dst->Length() != 0) {
        LogWarning("Functor %s has one row on one side and none on the other", functor.GetName().c_str());
        ResultBlocks(dst, false).Clear(dst->Length());
    }
    return ERROR_NONE;
}

} // namespace

template <ContainerID CID, Arith::ArithOpType OP>
std::string BinaryArith<CID, OP>::GetName() const
{
    constexpr std::array NAMES = {"Add", "Sub", "Mul", "Div", "Mod"};
    return NAMES[OP];
}

template <ContainerID CID, Arith::ArithOpType OP>
SeriesAttr BinaryArith<CID, OP>::GetDstAttr(const Cursor& lhs, const Cursor& rhs) const
{
    return Common::BroadcastAttr(lhs, rhs);
}

template <ContainerID CID, Arith::ArithOpType OP>
bool BinaryArith<CID, OP>::CheckParams(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    const MERVO_TESSERA_TYPEID type = rhs->GetAttr().typeId;
    return Common::CanBroadcast(lhs, rhs) && lhs->GetAttr().typeId == type && dst->GetAttr().typeId == type &&
        dst->Length() == Common::BroadcastLength(lhs, rhs);
}

template <ContainerID CID, Arith::ArithOpType OP>
template <typename T>
ErrorCode BinaryArith<CID, OP>::OnExecuteSIMD(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return ComputeArrays(OP, lhs, rhs, dst);
}

template <ContainerID CID, Arith::ArithOpType OP>
template <typename T>
ErrorCode BinaryArith<CID, OP>::OnExecute(const Cursor& lhs, const Cursor& rhs, const Cursor& dst) const
{
    return ComputeCells(*this, OP, lhs, rhs, dst);
}

template class BinaryArith<CONTAINER_ARRAY, Arith::ADDITION>;
template class BinaryArith<CONTAINER_ARRAY, Arith::SUBTRACTION>;
template class BinaryArith<CONTAINER_ARRAY, Arith::MULTIPLICATION>;
template class BinaryArith<CONTAINER_ARRAY, Arith::DIVISION>;
template class BinaryArith<CONTAINER_ARRAY, Arith::REMAINDER>;
template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::ADDITION>, MutableArgs::SOURCE>::transformTable;
template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::SUBTRACTION>, MutableArgs::SOURCE>::transformTable;
template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::MULTIPLICATION>, MutableArgs::SOURCE>::transformTable;
template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::DIVISION>, MutableArgs::SOURCE>::transformTable;
template const BinaryTable<1>
    Binary<BinaryArith<CONTAINER_ARRAY, Arith::REMAINDER>, MutableArgs::SOURCE>::transformTable;

} // namespace MERVO::Tessera::Func
