#include "tessera/core/table_reader.h"

namespace MERVO::Tessera {

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

bool TableReader::MakeCursors(std::vector<Cursor>& cursors) const
{
    for (unsigned int k = 0; k < table.ColumnCount(); ++k) {
        cursors.push_back(table.GetSlicedIterator(table.GetColumn(k)));
        if (cursors.back() == nullptr) {
            LogError("Column %u of the window can't be read", k);
            return false;
        }
    }
    return true;
}

} // namespace MERVO::Tessera
