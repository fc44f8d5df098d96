// Memory runs out anywhere in the operations of the classes.

#include <iostream>

#include "tests/support/shortage.h"
#include "tests/support/temporary_folder.h"

namespace MERVO::Tessera {
namespace {

using Positions = std::vector<std::uint32_t>;
using Names = std::vector<std::string>;
using Range = DataFrame::Range;
using Types = DataFrame::Types;

template <template <ContainerID, typename...> class F, typename... Args>
UnaryFactory Make(Args... args)
{
    return Func::FunctorFactory<F, Func::UnaryBase, Args...>{args...};
}

// What a caller hands over is made before: only what the library takes is to fail.
const Positions KEY{0};
const Positions TWO_KEYS{0, 1};
const Positions FLOATING_KEY{3};
const Positions ROW_NUMBERS{7, 7, 0, 14};
const Names COLUMN_NAMES{"doubles", "the texts, with a long name"};
const Names NEW_NAMES{"a name that is long enough", "another name that is long", "a name that is long enough"};
const std::array<std::string, 2> SUFFIXES{" of the left table", " of the right table"};
const std::string FIRST = "first";
const std::string MOMENTS = "moments";
const std::string COMMA = ",";
const UnaryFactory SUM = Make<Func::Sum>();
const UnaryFactory MAX = Make<Func::Max>();
const UnaryFactory FILL = Make<Func::FillNan, std::string_view>("ffill");
const UnaryFactory SKEW = Make<Func::Skew, bool, bool>(true, true);
const DataFrame::TableParams CELLS{{3}, {0}, {1}};
const Types FILE_TYPES{TESSERA_INT32, TESSERA_STRING};
const Types FIELD_TYPES{TESSERA_INT64, TESSERA_STRING, TESSERA_DOUBLE, TESSERA_DATAFRAME};
const DataFrame::Containers NO_CONTAINERS;
const Types NO_TYPES;
const std::vector<std::string> FIELDS{"1", "a text that is long enough", "2.5", "", "2", "b", "3", ""};

/// Columns that a run consumes.
std::vector<std::vector<std::string>>& Handed()
{
    static std::vector<std::vector<std::string>> columns;
    return columns;
}

/// An operation that gives a table.
Operation Giving(const char* name, std::function<DataFrame(const Scene&)> give, void (*prepare)(Scene&) = nullptr)
{
    return {name,
        [give](Scene& scene) {
            scene.result.emplace(give(scene));
            return scene.result->GetError().code;
        },
        prepare};
}

/// A pivot table tells a failure by the log alone.
DataFrame Kept(DataFrame pivot)
{
    pivot.SetError({pivot.ColumnCount() == 0 ? 3 : 0, ""});
    return pivot;
}

void PutNumbersIntoDst(Scene& scene) { scene.dst.Table() = scene.numbers.Table(); }
void EmptyDst(Scene& scene) { scene.dst.Table() = DataFrame(); }
void PutReadingsIntoDst(Scene& scene) { scene.dst.Table() = scene.mixed.Table().Slice(1U, Range{2, 4}); }

/// One that gives groups or samples, of which a table is made with memory enough.
template <typename Group>
Operation Grouping(const char* name, Group group)
{
    using Made = decltype(group(std::declval<Scene&>()));
    const auto made = std::make_shared<Made>();
    return {name,
        [group, made](Scene& scene) {
            *made = group(scene);
            return made->GetGroupNum() == 0 ? 3 : 0;
        },
        [made](Scene& scene) {
            PutMixedIntoDst(scene);
            scene.tell = [made] { return made->GetGroupNum() == 0 ? DataFrame() : made->CopyGroup(1); };
        }};
}

Operation InDst(const char* name, std::function<ErrorCode(DataFrame&, const Scene&)> change)
{
    return {name, [change](Scene& scene) { return change(scene.dst.Table(), scene); }, &PutMixedIntoDst};
}

/// A file that a run writes, or reads; `tell` shows that nothing else is left in its folder.
class CsvFile {
public:
    std::string Path() const { return folder.Path("table.csv"); }
    void Prepare(Scene& scene)
    {
        folder.Write("table.csv", "n,the texts\n1,a text that is long enough\n2,\n");
        path = Path();
        scene.dst.Table() = DataFrame();
        scene.tell = [this] {
            return TableOf(
                Column<std::string>("", folder.Names()), Column<std::string>("", {folder.Read("table.csv")}));
        };
    }
    std::string path; ///< which a run consumes
    const TemporaryFolder folder;
};

CsvFile& File()
{
    static CsvFile file;
    return file;
}

void PrepareFile(Scene& scene) { File().Prepare(scene); }

const Operation CLASS_OPERATIONS[] = {
    Giving("Construct", [](const Scene&) { return DataFrame(); }),
    Giving("Copy", [](const Scene& s) { return DataFrame(s.mixed.Table()); }),
    Giving("CopyOfWindow",
        [](const Scene& s) {
            return DataFrame(s.mixed.Table().Slice(Range{2, 9}, Range{1, 4}));
        }),
    Giving("GetEmptyDataFrameOfType",
        [](const Scene&) {
            return GetEmptyDataFrame({3, 2}, TESSERA_STRING);
        }),
    InDst("AssignCopy", [](DataFrame& table, const Scene& s) { return (table = s.numbers.Table()).GetError().code; }),
    InDst("AssignWindow",
        [](DataFrame& table, const Scene&) {
            return (table = table[Range{3, 9}]).GetError().code;
        }),
    InDst("AssignColumns",
        [](DataFrame& table, const Scene&) {
            return (table = table.Slice(1U, Range{1, 3})).GetError().code;
        }),
    {"AssignToWindow",
        [](Scene& s) {
            DataFrameRef window = s.dst.Table()[Range{0, 15}];
            return (window = s.mixed.Table()).GetError().code;
        },
        &PutMixedIntoDst, true},
    InDst("SliceByNames",
        [](DataFrame& table, const Scene&) {
            return table.Slice(Range{0, 3}, DataFrame::NameRange{"key", MOMENTS}).GetError().code;
        }),
    InDst("ColumnByName", [](DataFrame& table, const Scene&) { return table["doubles"].GetError().code; }),
    InDst("ReadVector",
        [](DataFrame& table, const Scene&) {
            return table.ReadVector(FIELDS, {2, 4}, FIELD_TYPES, NO_CONTAINERS);
        }),
    {"ReadVectorByCol",
        [](Scene& s) { return s.dst.Table().ReadVectorByCol(std::move(Handed()), NO_TYPES, NO_CONTAINERS); },
        [](Scene& s) {
            EmptyDst(s);
            Handed() = {FIELDS, FIELDS};
        }},
    {"ReadCSV", [](Scene& s) { return s.dst.Table().ReadCSV(std::move(File().path), FILE_TYPES, true, COMMA); },
        &PrepareFile},
    {"ReadUniformCSV", [](Scene& s) { return s.dst.Table().ReadCSV<std::string>(std::move(File().path), true, COMMA); },
        &PrepareFile},
    {"ReadFormVec", [](Scene& s) { return s.dst.Table().ReadFormVec(FIELDS, 4, FIELD_TYPES, false); }, &PrepareFile},
    {"GetCSVVec",
        [](Scene& s) {
            Names cells;
            unsigned int columns = 0;
            return s.dst.Table().GetCSVVec(File().path, COMMA, cells, columns);
        },
        &PrepareFile},
    {"ToCSV", [](Scene& s) { return s.numbers.Table().ToCSV(std::move(File().path), true, COMMA); }, &PrepareFile},
    Giving("SelectRowByFilter", [](const Scene& s) { return s.mixed.Table().SelectRow(s.rowMarks.Table()); }),
    Giving("SelectRow", [](const Scene& s) { return s.mixed.Table().SelectRow(ROW_NUMBERS); }),
    Giving("DropRowByFilter", [](const Scene& s) { return s.mixed.Table().DropRow(s.rowMarks.Table()); }),
    Giving("DropRow", [](const Scene& s) { return s.mixed.Table().DropRow(ROW_NUMBERS); }),
    InDst("SelectRowInplace", [](DataFrame& table, const Scene&) { return table.SelectRowInplace(ROW_NUMBERS); }),
    InDst("DropRowInplace", [](DataFrame& table, const Scene& s) { return table.DropRowInplace(s.rowMarks.Table()); }),
    Giving("SelectCol", [](const Scene& s) { return s.mixed.Table().SelectCol(FLOATING_KEY); }),
    Giving("SelectColByName", [](const Scene& s) { return s.mixed.Table().SelectCol(COLUMN_NAMES); }),
    Giving("SelectColByFilter", [](const Scene& s) { return s.mixed.Table().SelectCol(s.columnMarks.Table()); }),
    Giving("DropColByName", [](const Scene& s) { return s.mixed.Table().DropCol(COLUMN_NAMES); }),
    InDst("SelectColInplace", [](DataFrame& table, const Scene&) { return table.SelectColInplace(TWO_KEYS); }),
    InDst("DropColInplace", [](DataFrame& table, const Scene&) { return table.DropColInplace(COLUMN_NAMES); }),
    InDst("InsertColInplace",
        [](DataFrame& table, const Scene& s) { return table.InsertColInplace(s.mixed.Table(), 2); }),
    InDst(
        "AppendColInplace", [](DataFrame& table, const Scene& s) { return table.AppendColInplace(s.numbers.Table()); }),
    {"SetColumnName", [](Scene& s) { return s.dst.Table().SetColumnName(NEW_NAMES); }, &PutNumbersIntoDst},
    {"GetColumnName", [](Scene& s) { return s.dst.Table().GetColumnName().size() == 3 ? 0 : 3; }, &PutNumbersIntoDst},
    Giving("DropNanRow", [](const Scene& s) { return s.numbers.Table().DropNanRow(true, TWO_KEYS); }),
    Giving("DropNanRowByCount", [](const Scene& s) { return s.numbers.Table().DropNanRow(2); }),
    Giving("DropNanCol", [](const Scene& s) { return s.numbers.Table().DropNanCol(14); }),
    Giving("Duplicated", [](const Scene& s) { return s.mixed.Table().Duplicated(TWO_KEYS, FIRST); }),
    Giving("DuplicatedFloats", [](const Scene& s) { return s.mixed.Table().Duplicated(FLOATING_KEY, FIRST); }),
    Giving("DropDuplicatesOutplace", [](const Scene& s) { return s.mixed.Table().DropDuplicatesOutplace(KEY, FIRST); }),
    InDst("DropDuplicatesInplace",
        [](DataFrame& table, const Scene&) { return table.DropDuplicatesInplace(KEY, FIRST); }),
    InDst("Sort", [](DataFrame& table, const Scene&) { return table.Sort(TWO_KEYS, true); }),
    InDst("SortByFloats", [](DataFrame& table, const Scene&) { return table.Sort(FLOATING_KEY, false); }),
    InDst("SortByName", [](DataFrame& table, const Scene&) { return table.Sort(COLUMN_NAMES, true); }),
    Giving("Unique", [](const Scene& s) { return s.mixed.Table().Unique(0); }),
    Giving("UniqueFloats", [](const Scene& s) { return s.mixed.Table().Unique(3); }),
    Giving("Transpose", [](const Scene& s) { return s.texts.Table().Transpose(); }),
    Giving("Add", [](const Scene& s) { return s.numbers.Table() + s.numbers.Table(); }),
    Giving("AddTexts", [](const Scene& s) { return s.texts.Table() + s.texts.Table(); }),
    Giving("AddTables",
        [](const Scene& s) {
            return s.mixed.Table().Slice(1U, Range{4, 5}) + s.mixed.Table().Slice(1U, Range{4, 5});
        }),
    Giving("OneToAll",
        [](const Scene& s) {
            return s.numbers.Table() - s.numbers.Table()[DataFrameRef::NameRange{"b", "c"}];
        }),
    Giving("Less", [](const Scene& s) { return s.numbers.Table() < s.numbers.Table(); }),
    Giving("EqualTexts", [](const Scene& s) { return s.texts.Table() == s.texts.Table(); }),
    Giving("And", [](const Scene& s) { return s.rowMarks.Table() && s.rowMarks.Table(); }),
    Giving("Not", [](const Scene& s) { return !s.rowMarks.Table(); }),
    {"AddAssign", [](Scene& s) { return (s.dst.Table() += s.numbers.Table()).GetError().code; }, &PutNumbersIntoDst},
    {"AddAssignToItself", [](Scene& s) { return (s.dst.Table() += s.dst.Table()["b"]).GetError().code; },
        &PutNumbersIntoDst},
    {"Any", [](Scene& s) { return s.rowMarks.Table().Any() ? 0 : 3; }},
    {"ToVector", [](Scene& s) { return s.texts.Table().ToVector<std::string>().size() == 15 ? 0 : 3; }},
    {"To1DVector", [](Scene& s) { return s.texts.Table().To1DVector<std::string>().size() == 15 ? 0 : 3; }},
    {"ToArrayRecord", [](Scene& s) { return NdData(s.numbers.Table()).data != nullptr ? 0 : 3; }},
    {"Show",
        [](Scene& s) {
            std::cout.setstate(std::ios::failbit); // which keeps it quiet
            s.mixed.Table().Show("message");
            std::cout.clear();
            return 0;
        }},
    {"Apply", [](Scene& s) { return s.dst.Table().ApplyInplace(FILL, s.numbers.Table()); }},
    {"ApplyToItself", [](Scene& s) { return s.dst.Table().ApplyInplace(FILL, s.dst.Table()); }, &PutNumbersIntoDst},
    {"ApplyToWindow", [](Scene& s) { return DataFrameRef(s.dst.Table()).ApplyInplace(FILL, s.numbers.Table()); },
        &PutNumbersIntoDst, true},
    {"ApplyWindowToItself",
        [](Scene& s) {
            DataFrameRef window(s.dst.Table());
            return window.ApplyInplace(FILL, window);
        },
        &PutNumbersIntoDst, true},
    {"ApplyRowInplace", [](Scene& s) { return s.dst.Table().ApplyRowInplace<double>(SUM, s.numbers.Table()); },
        &PutNumbersIntoDst},
    Grouping("GroupByInPlace", [](Scene& s) { return s.dst.Table().GroupBy(KEY, true, true, true); }),
    Grouping("GroupBy", [](Scene& s) { return s.dst.Table().GroupBy(TWO_KEYS, false, true, false); }),
    Grouping("GroupByName", [](Scene& s) { return s.dst.Table().GroupBy(COLUMN_NAMES, false, false, true); }),
    Grouping("Resample", [](Scene& s) { return s.mixed.Table().Resample(MOMENTS, DateTime(60), true, false); }),
    Giving(
        "Groups.Apply", [](const Scene& s) { return s.numbers.Table().GroupBy(KEY, false, true, true).Apply(SKEW); }),
    Giving(
        "Samples.Apply", [](const Scene& s) { return s.dst.Table().Resample(0, DateTime(50), true, true).Apply(SUM); },
        &PutReadingsIntoDst),
    Giving(
        "Samples.GlobalApply",
        [](const Scene& s) { return s.dst.Table().Resample(0, DateTime(50), true, true).GlobalApply(FILL); },
        &PutReadingsIntoDst),
    Giving("Groups.Transform",
        [](const Scene& s) { return s.numbers.Table().GroupBy(KEY, false, true, true).Transform(MAX); }),
    Giving("AggregateByFloats", [](const Scene& s) { return s.mixed.Table().Aggregate(FLOATING_KEY, KEY, MAX); }),
    Giving("Aggregate", [](const Scene& s) { return s.mixed.Table().Aggregate(TWO_KEYS, FLOATING_KEY, SUM); }),
    Giving("AggregateBySkew", [](const Scene& s) { return s.mixed.Table().Aggregate(KEY, FLOATING_KEY, SKEW); }),
    Giving("TransformGroups", [](const Scene& s) { return s.mixed.Table().TransformGroups(KEY, FLOATING_KEY, MAX); }),
    Giving("PivotTable", [](const Scene& s) { return Kept(s.mixed.Table().PivotTable(CELLS, SUM, 0.5)); }),
    Giving("Merge",
        [](const Scene& s) {
            return s.mixed.Table().Merge(s.mixed.Table(), TWO_KEYS, TWO_KEYS, TESSERA_JOIN_OUTER, SUFFIXES);
        }),
    Giving("MergeByFloats",
        [](const Scene& s) {
            return s.mixed.Table().Merge(s.mixed.Table(), FLOATING_KEY, FLOATING_KEY, TESSERA_JOIN_LEFT, SUFFIXES);
        }),
    InDst("MergeInplace",
        [](DataFrame& table, const Scene& s) {
            return table.MergeInplace(s.mixed.Table(), TWO_KEYS, TWO_KEYS, TESSERA_JOIN_INNER);
        }),
};

/// A table or window that can't be made has no place for a code.
bool IsConstruction(const std::string& name)
{
    return name == "Construct" || name.starts_with("Copy") || name == "AssignCopy" ||
        name.find("Window") != std::string::npos;
}

class ClassesWithoutMemory : public testing::TestWithParam<std::tuple<Operation, Shortage>> {};

INSTANTIATE_TEST_SUITE_P(Operations, ClassesWithoutMemory,
    testing::Combine(testing::ValuesIn(CLASS_OPERATIONS), testing::Values(Shortage::PASSING, Shortage::LASTING)),
    ShortageCaseName);

TEST_P(ClassesWithoutMemory, GiveACodeAndHarmNothing)
{
    const auto& [operation, shortage] = GetParam();
    FailEachAllocation(operation, shortage, shortage == Shortage::LASTING || IsConstruction(operation.name));
}

} // namespace
} // namespace MERVO::Tessera
