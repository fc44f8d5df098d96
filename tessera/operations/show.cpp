#include <algorithm>

#include "tessera/core/data_frame.h"
#include "tessera/core/element_text.h"
#include "tessera/core/flat_call.h"
#include "tessera/core/handles.h"
#include "tessera/core/window_bounds.h"

namespace MERVO::Tessera {
namespace {

/// What stands before a column's values: its running number, value type and name.
std::string ColumnHeading(unsigned int number, const SeriesPtr& column)
{
    std::string digits = std::to_string(number);
    digits.insert(0, digits.size() < 3 ? 3 - digits.size() : 0, '0');
    return "[" + digits + " " + GetTypeNameById(column == nullptr ? TESSERA_INVALID : column->GetTypeId()) + " ] ";
}

} // namespace

void DataFrameView::Show(const std::string& message) const
try {
    if (RefreshColumnName() != ERROR_NONE) {
        return;
    }
    LogDump("MESSAGE: [%s]", message.c_str());
    const int rows = static_cast<int>(RowCount());
    const int columns = static_cast<int>(ColumnCount());
    const int held = static_cast<int>(series->size());
    if (error.code != ERROR_NONE) {
        LogDump("DataFrame is invalid %d %s", error.code, error.message.c_str());
        LogDump("Shape:[%d,%d], column size %d", rows, columns, held);
        return;
    }
    const bool isRef = dynamic_cast<const DataFrame*>(this) == nullptr;
    LogDump("isRef %d, IsColNameDirty %d, Shape:[%d,%d], column size %d", static_cast<int>(isRef),
        static_cast<int>(isColNameDirty), rows, columns, held);
    LogDump("RowIndex [%d, %d], ColIndex [%d, %d]", static_cast<int>(rowIndex[0]), static_cast<int>(rowIndex[1]),
        static_cast<int>(colIndex[0]), static_cast<int>(colIndex[1]));
    PrintText("NameToIndex: ");
    for (const auto& [name, place] : *nameToIndex) {
        PrintText("[" + name + "," + std::to_string(place) + "] ");
    }
    EndPrintedLine();
    for (unsigned int k = 0; k < (IsFarBeyondColumns(*this) ? 0 : ColumnCount()); ++k) {
        const SeriesPtr& column = GetColumn(k);
        PrintText(ColumnHeading(k, column));
        if (column == nullptr) {
            PrintText("null Series ptr");
            EndPrintedLine();
            continue;
        }
        PrintText("\"" + column->GetName() + "\" : ");
        const unsigned int size = column->Size(); // which may have shrunk below the window since
        column->Print(std::min(rowIndex[0], size), std::min(rowIndex[1], size));
    }
    PrintText("------------------------- end -------------------------");
    EndPrintedLine();
} catch (...) { // no memory
    static_cast<void>(TellNoMemory("Show"));
}

} // namespace MERVO::Tessera

using namespace MERVO::Tessera;

void MERVO_TSR_Show(MERVO_TSR_CONTEXT* handle)
{
    static_cast<void>(Guarded("MERVO_TSR_Show", [handle] {
        const DataFrameRef* table = TableBehind(handle);
        if (table == nullptr) {
            LogError("[MERVO_TSR_Show] Input is Invalid");
            return ERROR_NULL_HANDLE;
        }
        table->Show("Show DataFrame");
        return ERROR_NONE;
    }));
}
