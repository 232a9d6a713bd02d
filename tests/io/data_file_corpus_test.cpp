// Data files that other software wrote, whole, malformed and cut.
#include "io/data_file.h"
#include "io/text_file.h"
#include "io/inflate.h"
#include "support/capture.h"
#include "support/expected_file.h"
#include "core/text.h"

#include <deque>
#include <random>
#include <sstream>

using namespace capture;

namespace {

constexpr double untouched = 77;

// As many outputs as a file may need, each a number that no file has.
struct Outputs {
    std::deque<M<double>> values;
    std::vector<Mr<double>> selections;

    explicit Outputs(std::size_t count)
    {
        for (std::size_t k = 0; k < count; ++k)
            selections.emplace_back(values.emplace_back(untouched));
    }
    void load(std::string const& path) { load_list(TM(path.c_str()), selections.data(), static_cast<int>(selections.size())); }
    std::size_t loaded() const
    {
        std::size_t count = 0;
        for (M<double> const& value : values)
            count += !is_untouched(value);
        return count;
    }
    // Nothing behind the first ones has been written to.
    bool in_order() const
    {
        for (std::size_t k = loaded(); k < values.size(); ++k)
            if (!is_untouched(values[k]))
                return false;
        return true;
    }

private:
    // A sparse value may have room for an element that nobody has written.
    static bool is_untouched(M<double> const& value) { return value.size() == 1 && !value.issparse() && value.addr()[0] == untouched; }
};

// The largest block that was asked for while it lives.
class LargestBlock {
public:
    LargestBlock()
    {
        largest() = 0;
        arrlib::platform::set_heap(
            [](std::size_t size) {
                largest() = std::max(largest(), size);
                return std::malloc(size);
            },
            std::free);
    }
    ~LargestBlock() { arrlib::platform::set_heap(nullptr, nullptr); }

    // Small elements become doubles, and a compressed byte stands for up to 1032; work memory and the
    // pool's blocks come on top.
    static bool fits(std::string const& path, bool compressed)
    {
        std::size_t const work = std::size_t{1} << 19;
        return largest() <= work + std::filesystem::file_size(path) * (compressed ? 8 * 1032 : 16);
    }

private:
    static std::size_t& largest()
    {
        static std::size_t size = 0;
        return size;
    }
};

bool is_loaded(expected::Variable const& variable)
{
    return variable.may("load") && variable.name != "(none)";
}

// What is said about the variables that are not loaded, and about the output that is too much.
struct Messages {
    Texts reports, warnings;

    Messages(expected::File const& file, std::string const& path)
    {
        for (expected::Variable const& one : file.variables)
            if (one.demand[0] == "skip-cell")
                warnings.push_back("load5: '" + path + "' skipped cell array.");
            else if (one.demand[0] == "skip-struct")
                warnings.push_back("load5: '" + path + "' skipped structure.");
            else if (!is_loaded(one) && one.demand[0] == "unrecognized" && one.name != "(none)")
                reports.push_back("load5: '" + path + "' unrecognized matrix type");
            else if (!is_loaded(one) && one.demand[0] == "refuse-dims")
                reports.push_back("load5: Can not read matrix from file '" + path + "' which has more then 4 dimensions.");
        reports.push_back("load: '" + path + "' could not read data set");
    }
};

struct DataFile {
    expected::File file;
    // Those of its variables that are loaded.
    std::vector<expected::Variable> wanted;
    std::string name, path;
};

// Calls for every good binary file that this build can read.
template <class Visit> void each_file(Visit visit)
{
    for (auto const& path : expected::files("open", ".exp")) {
        DataFile one{expected::read(path), {}, path.stem().string(), std::filesystem::path(path).replace_extension(".mat").string()};
        if (one.file.layout == "text" || (one.file.needs == "inflate" && !arrlib::InflateSource::is_available()))
            continue;
        std::copy_if(one.file.variables.begin(), one.file.variables.end(), std::back_inserter(one.wanted), is_loaded);
        SCOPED_TRACE(one.name);
        visit(one);
    }
}

TEST(DataFiles, GoodOnesAreLoaded)
{
    each_file([](DataFile const& one) {
        Reports const reports;
        Warnings const warnings;
        Outputs outputs(one.wanted.size() + 1);
        LargestBlock const largest;
        outputs.load(one.path);
        EXPECT_TRUE(largest.fits(one.path, one.file.needs == "inflate"));
        Messages const messages(one.file, one.path);
        EXPECT_EQ(reports.all(), messages.reports);
        EXPECT_EQ(warnings.all(), messages.warnings);
        EXPECT_EQ(outputs.loaded(), one.wanted.size());
        for (std::size_t k = 0; k < one.wanted.size(); ++k)
            expected::expect_equal(outputs.values[k], one.wanted[k]);
    });
}

// Saves the variables of a file that the layout can hold.
std::vector<expected::Variable> save_again(DataFile const& one, bool old_layout, std::string const& path)
{
    std::deque<M<double>> values;
    std::vector<M<double> const*> list;
    std::vector<expected::Variable> saved;
    for (expected::Variable const& variable : one.wanted)
        if (!old_layout || variable.dims.size() == 2) {
            saved.push_back(variable);
            list.push_back(&values.emplace_back(expected::value_of(variable)));
        }
    if (!saved.empty())
        (old_layout ? saveV4_list : save_list)(TM(path.c_str()), list.data(), static_cast<int>(list.size()));
    return saved;
}

TEST(DataFiles, AreTheSameSavedAndLoadedAgain)
{
    TemporaryFolder const folder;
    std::string const path = folder.path("again.mat");
    for (bool const old_layout : {false, true})
        each_file([&](DataFile const& one) {
            Reports const reports;
            Warnings const warnings;
            std::vector<expected::Variable> const saved = save_again(one, old_layout, path);
            Outputs outputs(saved.size());
            for (std::size_t k = 0; k < saved.size(); ++k)
                outputs.values[k].setname(saved[k].name.c_str());
            outputs.load(path);
            EXPECT_EQ(reports.text() + warnings.text(), "");
            for (std::size_t k = 0; k < saved.size(); ++k)
                expected::expect_equal(outputs.values[k], saved[k], !old_layout);
        });
    EXPECT_EQ(folder.files(), 1);
}

// For tools/check-data-files: what the library writes, to be read by others.
TEST(DataFiles, AreWrittenForOtherReaders)
{
    char const* const folder = std::getenv("ARRLIB_DATA_FILES");
    if (!folder)
        GTEST_SKIP() << "ARRLIB_DATA_FILES names no folder";
    each_file([folder](DataFile const& one) {
        save_again(one, false, std::string(folder) + "/" + one.name + ".level5.mat");
        save_again(one, true, std::string(folder) + "/" + one.name + ".level4.mat");
    });
}

// At every byte of the first 512 and at some places behind.
TEST(DataFiles, CutOnesAreReported)
{
    TemporaryFolder const folder;
    std::mt19937 random(6);
    each_file([&](DataFile const& one) {
        std::string const whole = expected::content(one.path), path = folder.write("cut.mat", whole);
        std::vector<std::size_t> cuts;
        for (int k = 0; k < 20 && whole.size() > 513; ++k)
            cuts.push_back(512 + random() % (whole.size() - 512));
        for (std::size_t cut = 0; cut <= std::min<std::size_t>(512, whole.size() - 1); ++cut)
            cuts.push_back(cut);
        std::sort(cuts.rbegin(), cuts.rend());
        for (std::size_t const cut : cuts) {
            std::filesystem::resize_file(path, cut);
            Reports const reports;
            Warnings const warnings;
            Outputs outputs(one.wanted.size());
            LargestBlock const largest;
            outputs.load(path);
            EXPECT_TRUE(largest.fits(path, one.file.needs == "inflate")) << cut;
            // What is cut off may be padding only, or a variable that is not loaded.
            std::size_t const loaded = outputs.loaded();
            if (loaded < one.wanted.size()) {
                ASSERT_FALSE(reports.all().empty()) << cut;
                EXPECT_NE(reports.all().back().find("'" + path + "'"), std::string::npos) << cut << ": " << reports.all().back();
            }
            EXPECT_TRUE(outputs.in_order()) << cut;
            for (std::size_t k = 0; k < loaded && (cut % 64 == 0 || cut > 512); ++k)
                expected::expect_equal(outputs.values[k], one.wanted[k]);
        }
    });
}

TEST(DataFiles, MalformedOnesAreReported)
{
    std::ifstream manifest(expected::folder() / "malformed" / "MANIFEST");
    std::string name, layout, demand, about;
    std::size_t intact = 0, seen = 0;
    for (; manifest >> name >> layout >> demand >> intact >> about; ++seen) {
        std::string const path = (expected::folder() / "malformed" / name).string();
        bool const compressed = name[0] == 'z';
        Reports const reports;
        Warnings const warnings;
        Outputs outputs(3);
        LargestBlock const largest;
        if (layout == "text")
            loadascii(TM(path.c_str()), outputs.values[0]);
        else
            outputs.load(path);
        EXPECT_TRUE(demand != "report" || !reports.all().empty()) << name << ": " << about;
        EXPECT_TRUE(layout == "text" || outputs.loaded() == 3 || reports.text().find(path) != std::string::npos) << name << ": " << reports.text();
        EXPECT_GE(outputs.loaded(), intact) << name << ": " << about;
        EXPECT_TRUE(outputs.in_order()) << name;
        EXPECT_TRUE(largest.fits(path, compressed)) << name << ": " << about;
    }
    EXPECT_GT(seen, 300u);
}

TEST(DataFiles, TextOnesAreLoaded)
{
    for (auto const& path : expected::files("open", ".exp")) {
        if (!path.stem().string().starts_with("txt_"))
            continue;
        expected::File const file = expected::read(path);
        Reports const reports;
        M<double> value;
        loadascii(TM(std::filesystem::path(path).replace_extension(".txt").string().c_str()), value);
        EXPECT_TRUE(reports.all().empty()) << reports.text();
        expected::expect_equal(value, file.variables.at(0));
    }
}

} // namespace
