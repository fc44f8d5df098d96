#include "tessera/core/flat_call.h"
#include "tessera/functors/functor_factory.h"
#include "tessera/numeric/diff.h"
#include "tessera/numeric/insert_row.h"
#include "tessera/numeric/is_in.h"
#include "tessera/numeric/round.h"
#include "tessera/tessera.h"

using namespace MERVO::Tessera;

int32_t MERVO_TSR_Round(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, uint32_t decimals)
{
    return ApplyUnary(__func__, dst, src, Func::FunctorFactory<Func::Round, Func::UnaryBase, uint32_t>{decimals});
}

int32_t MERVO_TSR_Diff(MERVO_TSR_CONTEXT* dst, const MERVO_TSR_CONTEXT* src, int32_t periods)
{
    return ApplyUnary(__func__, dst, src, Func::FunctorFactory<Func::Diff, Func::UnaryBase, int32_t>{periods});
}

int32_t MERVO_TSR_IsIn(const MERVO_TSR_CONTEXT* src, const MERVO_TSR_CONTEXT* compare, MERVO_TSR_CONTEXT* dst)
{
    return ApplyBinary(__func__, dst, src, compare, Func::FunctorFactory<Func::IsIn, Func::BinaryBase>{});
}

int32_t MERVO_TSR_InsertRow(
    const MERVO_TSR_CONTEXT* rows, const MERVO_TSR_CONTEXT* base, MERVO_TSR_CONTEXT* dst, uint32_t index)
{
    return ApplyBinary(
        __func__, dst, rows, base, Func::FunctorFactory<Func::InsertRow, Func::BinaryBase, uint32_t>{index});
}
