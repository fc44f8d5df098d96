#include "tessera/grouping/group_results.h"

#include "tessera/functors/functor_slots.h"
#include "tessera/functors/table_combination.h"

namespace MERVO::Tessera {

ErrorCode BuildColumn(const SeriesAttr& attr, const std::string& name, SeriesPtr& result)
{
    result = BuildSeries(attr, name);
    if (!IsValueType(attr.typeId)) {
        return ERROR_NONE;
    }
    return result->GetIterator() == nullptr ? ERROR_OUT_OF_MEMORY : ERROR_NONE;
}

Error EvaluateColumn(const UnaryFactory& creator, const SourceColumn& source, std::uint32_t length,
    const ResultTexts& texts, const std::function<ErrorCode(const Func::UnaryBase&, const SeriesPtr&)>& run,
    SeriesPtr& result)
{
    const ContainerID container = source.rows->GetAttr().containerId;
    Func::FunctorSlots<Func::UnaryBase> functors(creator);
    const Func::UnaryBase& functor = functors.For(container);
    const SeriesAttr attr = functor.GetDstAttr(source.rows);
    if (attr.containerId != container) {
        LogError("Functor %s should not change the container type %d to %d", functors.Name().c_str(),
            static_cast<int>(container), static_cast<int>(attr.containerId));
        return {ERROR_BAD_KIND, texts.containerChange};
    }
    ErrorCode code = BuildColumn(WithLength(attr, length), source.name, result);
    if (code == ERROR_NONE) {
        code = run(functor, result);
    }
    if (code != ERROR_NONE) {
        LogError(texts.failure, functors.Name().c_str(), static_cast<int>(source.position));
        return {code, "Failed to execute functor"};
    }
    return {};
}

DataFrame RefuseGroups(const char* text)
{
    LogError("%s", text);
    return Func::FailedTable(ERROR_BAD_KIND, text);
}

} // namespace MERVO::Tessera
