#include "tessera/core/table_reader.h"

namespace MERVO::Tessera {

ErrorCode OpenColumns(const DataFrameRef& table, std::vector<Cursor>& cursors)
{
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        const SeriesPtr& column = table.GetColumn(k);
        Cursor cursor = table.GetSlicedIterator(column);
        if (cursor == nullptr) {
            LogError("Column %u of the window can't be read", k);
            const DataFrameView::Range& rows = table.GetRowIndex();
            const bool isThere = column != nullptr && rows[0] <= rows[1] && rows[1] <= column->Size();
            return isThere ? ERROR_OUT_OF_MEMORY : ERROR_BAD_VALUE;
        }
        cursors.push_back(std::move(cursor));
    }
    return ERROR_NONE;
}

TableReader::TableReader(const DataFrameRef& source) : table(source) {}

TableReader::~TableReader() = default;

bool TableReader::CanRead(MERVO_TESSERA_TYPEID type, const char* target, const char* mismatch) const
{
    if (table.GetError().code != ERROR_NONE) {
        LogError("Invalid dataFrame %d to %s vector", table.GetError().code, target);
        return false;
    }
    const MERVO_TESSERA_TYPEID own = table.Type();
    if (own != type) {
        LogError("%s (%s vs %s).", mismatch, GetTypeNameById(own).c_str(), GetTypeNameById(type).c_str());
        return false;
    }
    return true;
}

} // namespace MERVO::Tessera
