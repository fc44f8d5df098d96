// Flat calls in random order, on up to eight handles, records of groups, and what is no good handle. Arguments are
// valid, null, contradictory or huge; only what a call must trust is true: pointers, and the lengths of what is handed
// over. After each call its code is one that is documented, every table is in one piece, and nothing has changed that
// the call was not to change. Input: the calls, by their number in the table below, and their arguments.

#include <algorithm>
#include <array>
#include <iterator>
#include <memory>
#include <tuple>

#include "fuzz/support/inputs.h"
#include "fuzz/support/memory.h"
#include "fuzz/support/require.h"
#include "fuzz/support/silence.h"
#include "fuzz/support/tables.h"
#include "fuzz/support/witness.h"

namespace MERVO::Tessera::Fuzz {
namespace {

constexpr std::uint32_t MOST_ROWS = 60;
constexpr std::uint32_t MOST_COLUMNS = 40;

/// The handles that the calls get, and what is known of them.
class Session {
public:
    Session(const std::uint8_t* data, std::size_t size) : inputs(data, size)
    {
        for (MERVO_TSR_CONTEXT*& handle : handles) {
            Keep(handle, MERVO_TSR_CreateDF());
            *handle->dataFrame = inputs.Table(MOST_ROWS, false);
            if (inputs.remaining_bytes() == 0) {
                break;
            }
        }
    }
    Session(const Session&) = delete;
    Session& operator=(const Session&) = delete;
    ~Session()
    {
        for (MERVO_TSR_CONTEXT*& handle : handles) {
            MERVO_TSR_Release(&handle);
        }
        MERVO_TSR_ReleaseGroupArray(&groups);
    }

    /// A handle that a call reads: a live one, an entry of a record, or one that must be refused.
    MERVO_TSR_CONTEXT* Source()
    {
        const std::uint32_t place = inputs.Below(32);
        if (place < 24) {
            return handles[place % HANDLES];
        }
        if (place < 28) {
            return groups == nullptr || groups->count == 0 ? nullptr : &groups->entries[inputs.Below(groups->count)];
        }
        hollow = {};
        twofold = {&foreignTable, &foreignWindow};
        return std::array<MERVO_TSR_CONTEXT*, 4>{nullptr, &hollow, &twofold, handles[0]}[place - 28];
    }
    /// A handle that a call may write through.
    MERVO_TSR_CONTEXT* Target()
    {
        MERVO_TSR_CONTEXT* const handle = Source();
        if (Table(handle) != nullptr) {
            witness.Expect(*Table(handle));
        }
        return handle;
    }
    DataFrameRef* Table(const MERVO_TSR_CONTEXT* handle) const { return TableBehind(handle); }

    void KeepHandle(MERVO_TSR_CONTEXT* made)
    {
        const std::uint32_t place = inputs.Below(HANDLES);
        Keep(handles[place], made);
        witness.Forget(place);
    }
    void KeepGroups(MERVO_TSR_GROUP_ARRAY* made)
    {
        if (made == nullptr) {
            return;
        }
        MERVO_TSR_ReleaseGroupArray(&groups);
        groups = made;
        std::uint32_t rows = 0;
        for (std::uint32_t i = 0; i < groups->count; ++i) {
            Require(CheckDataFrame(&groups->entries[i]), "each entry of a record holds a table");
            RequireSound(*groups->entries[i].dataFrame, true);
            rows += groups->entries[i].dataFrame->RowCount();
        }
        if (rows > MOST_ROWS) {
            MERVO_TSR_ReleaseGroupArray(&groups);
        }
    }
    void Release()
    {
        MERVO_TSR_CONTEXT*& handle = handles[inputs.Below(HANDLES)];
        const bool isNull = handle == nullptr;
        Require(MERVO_TSR_Release(&handle) == (isNull ? ERROR_NULL_HANDLE : ERROR_NONE) && handle == nullptr,
            "a handle is released once");
    }
    void ReleaseGroups()
    {
        MERVO_TSR_ReleaseGroupArray(&groups);
        Require(groups == nullptr, "a record that is released is gone");
    }

    /// Looks at all tables after a call. What grew large makes way for something small.
    void Check()
    {
        for (std::size_t i = 0; i < handles.size(); ++i) {
            DataFrameRef* const table = Table(handles[i]);
            if (table == nullptr) {
                continue;
            }
            RequireSound(*table, CheckDataFrame(handles[i]));
            witness.Look(i, *table);
            if (table->RowCount() > MOST_ROWS || table->ColumnCount() > MOST_COLUMNS) {
                MERVO_TSR_Release(&handles[i]);
            }
        }
        witness.Finish();
    }

    Inputs inputs;

private:
    static constexpr std::uint32_t HANDLES = 8;

    /// Puts a handle in place of one that is released.
    static void Keep(MERVO_TSR_CONTEXT*& place, MERVO_TSR_CONTEXT* made)
    {
        if (made != nullptr) {
            MERVO_TSR_Release(&place);
            place = made;
        }
    }

    std::array<MERVO_TSR_CONTEXT*, HANDLES> handles = {};
    Witness witness{HANDLES};
    MERVO_TSR_GROUP_ARRAY* groups = nullptr;
    DataFrame foreignTable;
    DataFrameRef foreignWindow;
    MERVO_TSR_CONTEXT hollow = {};
    MERVO_TSR_CONTEXT twofold = {};
};

// ---- Arguments, drawn by their type

template <typename T>
T Draw(Session& session)
{
    if constexpr (std::is_same_v<T, MERVO_TSR_CONTEXT*>) {
        return session.Target();
    } else if constexpr (std::is_same_v<T, const MERVO_TSR_CONTEXT*>) {
        return session.Source();
    } else if constexpr (std::is_same_v<T, MERVO_TESSERA_TYPEID>) {
        return session.inputs.Type();
    } else if constexpr (std::is_same_v<T, std::uint32_t>) {
        return session.inputs.Index(12);
    } else {
        return session.inputs.Cell<T>();
    }
}

void Take(Session&, std::int32_t code) { Require(IsDocumented(code), "a flat call's code is documented"); }
void Take(Session& session, std::uint32_t code) { Take(session, static_cast<std::int32_t>(code)); }
void Take(Session& session, MERVO_TSR_CONTEXT* made) { session.KeepHandle(made); }
void Take(Session& session, MERVO_TSR_GROUP_ARRAY* made) { session.KeepGroups(made); }

template <typename R, typename... A>
void DrawAndCall(Session& session, R (*call)(A...))
{
    const std::tuple<A...> arguments{Draw<A>(session)...};
    if constexpr (std::is_void_v<R>) {
        std::apply(call, arguments);
    } else {
        Take(session, std::apply(call, arguments));
    }
}

/// A call whose arguments do not depend on each other.
template <auto CALL>
void Plain(Session& session)
{
    DrawAndCall(session, CALL);
}

// ---- Typed buffers

/// Loads a buffer that is as long as its shape says; or tells of a shape that is refused before the buffer is read.
template <typename T, auto CALL>
void Load(Session& session)
{
    Inputs& inputs = session.inputs;
    MERVO_TSR_CONTEXT* const handle = session.Target();
    std::vector<MERVO_TESSERA_TYPEID> types(inputs.Below(6));
    const MERVO_TESSERA_TYPEID common = inputs.Type();
    for (MERVO_TESSERA_TYPEID& type : types) {
        type = inputs.ConsumeBool() ? common : inputs.Type();
    }
    MERVO_TSR_SHAPE shape = {inputs.Below(30), static_cast<std::uint32_t>(types.size()), types.data()};
    const std::size_t count = std::size_t{shape.rows} * shape.cols;
    const auto cells = std::make_unique<T[]>(count);
    const Cells kind = inputs.CellKind();
    Random random = inputs.Seed();
    std::vector<std::string> texts(std::is_pointer_v<T> ? count : 0);
    for (std::size_t i = 0; i < count; ++i) {
        if constexpr (std::is_pointer_v<T>) {
            texts[i] = DrawCell<std::string>(random, kind);
            cells[i] = random.Below(256) == 0 ? nullptr : texts[i].c_str();
        } else {
            cells[i] = DrawCell<T>(random, kind);
        }
    }
    const T* data = cells.get();
    const MERVO_TSR_SHAPE* given = &shape;
    switch (inputs.Below(24)) {
    case 0:
        data = nullptr;
        break;
    case 1:
        given = nullptr;
        break;
    case 2:
        shape.types = nullptr;
        break;
    case 3:
        shape.rows = 0xFFFFFFFF;
        break;
    case 4:
        shape.cols = 1025 + inputs.Index(100) % 0xFFFFF000;
        break;
    default:
        break;
    }
    Take(session, CALL(handle, data, given));
}

/// Reads a table out into rows that have just the room they need.
template <typename T, auto CALL>
void Unload(Session& session)
{
    MERVO_TSR_CONTEXT* const handle = session.Source();
    const DataFrameRef* const table = session.Table(handle);
    std::vector<std::unique_ptr<T[]>> cells(table == nullptr ? 0 : table->RowCount());
    std::vector<void*> rows;
    for (auto& row : cells) {
        row = std::make_unique<T[]>(table->ColumnCount());
        rows.push_back(row.get());
    }
    if (!rows.empty() && session.inputs.Below(16) == 0) {
        rows[session.inputs.Below(static_cast<std::uint32_t>(rows.size()))] = nullptr;
    }
    MERVO_TSR_RESULT result = {rows.data(), 0, 0};
    const bool isRecord = session.inputs.Below(16) != 0;
    const std::int32_t code = CALL(handle, isRecord ? &result : nullptr);
    Take(session, code);
    Require(code != 0 || (result.rowCount == table->RowCount() && result.colCount == table->ColumnCount()),
        "a reader tells the shape");
}

// ---- Lists and texts

/// Positions in the columns or rows of a table, seldom none at all.
class Positions {
public:
    Positions(Session& session, const MERVO_TSR_CONTEXT* handle, bool areRows)
    {
        const DataFrameRef* const table = session.Table(handle);
        const std::uint32_t size = table == nullptr ? 0 : areRows ? table->RowCount() : table->ColumnCount();
        list = session.inputs.Indices(size, 6);
        isNull = session.inputs.Below(16) == 0;
    }
    const std::uint32_t* Data() const { return isNull ? nullptr : list.data(); }
    std::uint32_t Count() const { return static_cast<std::uint32_t>(list.size()); }

private:
    std::vector<std::uint32_t> list;
    bool isNull;
};

/// Names, mostly of columns, seldom with a null among them.
class Names {
public:
    Names(Session& session, const MERVO_TSR_CONTEXT* handle)
    {
        const DataFrameRef* const table = session.Table(handle);
        const std::uint32_t columns = table == nullptr ? 0 : std::min(table->ColumnCount(), MOST_COLUMNS);
        texts.resize(session.inputs.ConsumeBool() ? columns : session.inputs.Below(6));
        for (std::string& text : texts) {
            text = session.inputs.Below(4) == 0 ? session.inputs.Text() : session.inputs.Name();
            pointers.push_back(session.inputs.Below(32) == 0 ? nullptr : text.c_str());
        }
        isNull = session.inputs.Below(16) == 0;
    }
    const char* const* Data() const { return isNull ? nullptr : pointers.data(); }
    std::uint32_t Count() const { return static_cast<std::uint32_t>(pointers.size()); }

private:
    std::vector<std::string> texts;
    std::vector<const char*> pointers;
    bool isNull;
};

template <auto CALL, bool ARE_ROWS>
void Drop(Session& session)
{
    MERVO_TSR_CONTEXT* const dst = session.Target();
    const MERVO_TSR_CONTEXT* const src = session.Source();
    const Positions positions(session, src, ARE_ROWS);
    Take(session, CALL(dst, src, positions.Data(), positions.Count()));
}

void DropByName(Session& session)
{
    MERVO_TSR_CONTEXT* const dst = session.Target();
    const MERVO_TSR_CONTEXT* const src = session.Source();
    const Names names(session, src);
    Take(session, MERVO_TSR_DropColByName(dst, src, names.Data(), names.Count()));
}

void SetNames(Session& session)
{
    MERVO_TSR_CONTEXT* const table = session.Target();
    const Names names(session, table);
    Take(session, MERVO_TSR_SetColumnName(table, names.Data(), names.Count()));
}

void Slice(Session& session)
{
    const MERVO_TSR_CONTEXT* const src = session.Source();
    const auto drawRange = [&](bool areRows) {
        const DataFrameRef* const table = session.Table(src);
        const std::uint32_t size = table == nullptr ? 0 : areRows ? table->RowCount() : table->ColumnCount();
        std::array<std::uint32_t, 2> range = {session.inputs.Index(size), session.inputs.Index(size) + 1};
        if (session.inputs.Below(16) != 0) {
            std::sort(range.begin(), range.end());
        }
        return range;
    };
    const auto rows = drawRange(true);
    const auto columns = drawRange(false);
    const std::uint32_t fault = session.inputs.Below(32); // a wrong length is refused before the pair is read
    Take(session,
        MERVO_TSR_Slice(src, fault == 0 ? nullptr : rows.data(), fault == 1 ? nullptr : columns.data(),
            fault == 2 ? 0xFFFFFFFF : 2, fault == 3 ? 0 : 2));
}

template <auto CALL>
void WithText(Session& session)
{
    MERVO_TSR_CONTEXT* const dst = session.Target();
    const MERVO_TSR_CONTEXT* const src = session.Source();
    const bool hasRoom = session.inputs.Below(16) != 0;
    std::string text = session.inputs.Text();
    text += hasRoom ? std::string(1, '\0') : "";
    const std::vector<char> exact(text.begin(), text.end()); // without the terminator that a string has behind it
    Take(session,
        CALL(dst, src, session.inputs.Below(16) == 0 ? nullptr : exact.data(),
            static_cast<std::uint32_t>(exact.size())));
}

void ReplaceText(Session& session)
{
    MERVO_TSR_CONTEXT* const dst = session.Target();
    const MERVO_TSR_CONTEXT* const src = session.Source();
    const std::string before = session.inputs.Text();
    const std::string after = session.inputs.Text();
    const std::uint32_t fault = session.inputs.Below(32);
    Take(session,
        MERVO_TSR_ReplaceString(dst, src, fault == 0 ? nullptr : before.c_str(), fault == 1 ? nullptr : after.c_str()));
}

// ---- Groups and merging

void Group(Session& session)
{
    MERVO_TSR_CONTEXT* const table = session.Target();
    const Positions keys(session, table, false);
    Take(session, MERVO_TSR_GroupBy(table, keys.Data(), keys.Count()));
}

void GroupAndTransform(Session& session)
{
    MERVO_TSR_CONTEXT* const table = session.Target();
    const Positions keys(session, table, false);
    Take(session, MERVO_TSR_GroupBy_Transform(table, keys.Data(), keys.Count(), session.inputs.Index(5)));
}

void Merge(Session& session)
{
    MERVO_TSR_CONTEXT* const dst = session.Target();
    const MERVO_TSR_CONTEXT* const left = session.Source();
    const MERVO_TSR_CONTEXT* const right = session.Source();
    const Positions leftKeys(session, left, false);
    const Positions rightKeys(session, right, false);
    const MERVO_TSR_MERGE_KEYS keys = {
        leftKeys.Data(), rightKeys.Data(), std::min(leftKeys.Count(), rightKeys.Count())};
    const auto type = static_cast<std::int32_t>(session.inputs.Index(4));
    Take(session, MERVO_TSR_Merge(dst, left, right, session.inputs.Below(16) == 0 ? nullptr : &keys, type));
}

// ---- All flat calls

using Call = void (*)(Session&);
constexpr Call CALLS[] = {Plain<MERVO_TSR_CreateDF>, [](Session& session) { session.Release(); },
    Load<bool, ReadDataBool>, Load<std::int8_t, ReadDataInt8>, Load<std::uint8_t, ReadDataUint8>,
    Load<std::int16_t, ReadDataInt16>, Load<std::uint16_t, ReadDataUint16>, Load<std::int32_t, ReadDataInt32>,
    Load<std::uint32_t, ReadDataUint32>, Load<std::int64_t, ReadDataInt64>, Load<std::uint64_t, ReadDataUint64>,
    Load<float, ReadDataFloat>, Load<double, ReadDataDouble>, Load<const char*, ReadDataString>,
    Unload<bool, MERVO_TSR_GetResultBool>, Unload<std::int8_t, MERVO_TSR_GetResultInt8>,
    Unload<std::uint8_t, MERVO_TSR_GetResultUint8>, Unload<std::int16_t, MERVO_TSR_GetResultInt16>,
    Unload<std::uint16_t, MERVO_TSR_GetResultUint16>, Unload<std::int32_t, MERVO_TSR_GetResultInt32>,
    Unload<std::uint32_t, MERVO_TSR_GetResultUint32>, Unload<std::int64_t, MERVO_TSR_GetResultInt64>,
    Unload<std::uint64_t, MERVO_TSR_GetResultUint64>, Unload<float, MERVO_TSR_GetResultFloat>,
    Unload<double, MERVO_TSR_GetResultDouble>, Unload<std::string, MERVO_TSR_GetResultString>,
    Unload<DateTime, MERVO_TSR_GetResultDateTime>, Unload<DataFrame, MERVO_TSR_GetResultDataFrame>,
    Plain<MERVO_TSR_DeepCopy>, Plain<MERVO_TSR_TypeCast>, Plain<MERVO_TSR_TypeCastBool>, Plain<MERVO_TSR_TypeCastInt8>,
    Plain<MERVO_TSR_TypeCastUint8>, Plain<MERVO_TSR_TypeCastInt16>, Plain<MERVO_TSR_TypeCastUint16>,
    Plain<MERVO_TSR_TypeCastInt32>, Plain<MERVO_TSR_TypeCastUint32>, Plain<MERVO_TSR_TypeCastInt64>,
    Plain<MERVO_TSR_TypeCastUint64>, Plain<MERVO_TSR_TypeCastFloat>, Plain<MERVO_TSR_TypeCastDouble>,
    Plain<MERVO_TSR_TypeCastString>, Plain<MERVO_TSR_TypeCastDateTime>, Plain<MERVO_TSR_TypeCastDataFrame>,
    Plain<MERVO_TSR_Transpose>, Plain<MERVO_TSR_Show>, Slice, Plain<MERVO_TSR_DropRowByBool>,
    Drop<MERVO_TSR_DropRowByIndex, true>, Plain<MERVO_TSR_DropColByBool>, Drop<MERVO_TSR_DropColByIndex, false>,
    DropByName, Plain<MERVO_TSR_InsertColInplace>, SetNames, Plain<MERVO_TSR_DropNanRow>, Plain<MERVO_TSR_DropNanCol>,
    Plain<MERVO_TSR_SortValue>, Plain<MERVO_TSR_Reorder>, Plain<MERVO_TSR_Unique>, Group, GroupAndTransform,
    Plain<MERVO_TSR_Resample>, [](Session& session) { session.ReleaseGroups(); }, Merge, Plain<MERVO_TSR_Sum>,
    Plain<MERVO_TSR_Mean>, Plain<MERVO_TSR_Max>, Plain<MERVO_TSR_Min>, Plain<MERVO_TSR_Ptp>, Plain<MERVO_TSR_IdxMax>,
    Plain<MERVO_TSR_Var>, Plain<MERVO_TSR_Std>, Plain<MERVO_TSR_Moment>, Plain<MERVO_TSR_Kstat>, Plain<MERVO_TSR_Skew>,
    Plain<MERVO_TSR_Kurt>, Plain<MERVO_TSR_RollingSum>, Plain<MERVO_TSR_RollingMean>, Plain<MERVO_TSR_IsNan>,
    WithText<MERVO_TSR_FillNan>, WithText<MERVO_TSR_ReplaceNan>, Plain<MERVO_TSR_Interpolate>,
    Plain<MERVO_TSR_ReplaceBool>, Plain<MERVO_TSR_ReplaceInt8>, Plain<MERVO_TSR_ReplaceUint8>,
    Plain<MERVO_TSR_ReplaceInt16>, Plain<MERVO_TSR_ReplaceUint16>, Plain<MERVO_TSR_ReplaceInt32>,
    Plain<MERVO_TSR_ReplaceUint32>, Plain<MERVO_TSR_ReplaceInt64>, Plain<MERVO_TSR_ReplaceUint64>,
    Plain<MERVO_TSR_ReplaceFloat>, Plain<MERVO_TSR_ReplaceDouble>, ReplaceText, Plain<MERVO_TSR_Round>,
    Plain<MERVO_TSR_Diff>, Plain<MERVO_TSR_IsIn>, Plain<MERVO_TSR_InsertRow>};

} // namespace
} // namespace MERVO::Tessera::Fuzz

extern "C" int LLVMFuzzerInitialize(int*, char***) { return MERVO::Tessera::Fuzz::SilenceOutput() ? 0 : 1; }

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size)
{
    using namespace MERVO::Tessera::Fuzz;
    const MemoryBudget budget;
    Session session(data, size);
    for (int calls = 0; calls < 40 && session.inputs.remaining_bytes() != 0; ++calls) {
        const std::uint32_t call = session.inputs.Below(std::size(CALLS));
        MERVO::Tessera::LogDump("==== call %u", call); // to be seen where a finding is replayed with the log
        CALLS[call](session);
        session.Check();
    }
    return 0;
}
