#include "platform/otdr/core/soraxis.h"
#include "platform/otdr/core/sorreader.h"
#include "platform/otdr/core/sorvalues.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <optional>
#include <set>

namespace {

namespace fs = std::filesystem;
using otdr::ErrorCode;

struct Exhibit
{
    const char* name;
    std::optional<ErrorCode> error; ///< empty where something can still be read
    std::size_t samples = 0;
    std::size_t events = 0;
};

const Exhibit kExhibits[] = {
    {"empty.sor", ErrorCode::NotATrace},
    {"text.sor", ErrorCode::NotATrace},
    {"map-cut-short.sor", ErrorCode::Damaged},
    {"map-of-65535-blocks.sor", ErrorCode::Damaged},
    {"map-with-endless-name.sor", ErrorCode::Damaged},
    {"version1-map-ends-elsewhere.sor", ErrorCode::NotATrace},
    {"block-of-4-gigabytes.sor", ErrorCode::Damaged},
    {"no-samples-block.sor", ErrorCode::Damaged},
    {"no-samples-in-block.sor", ErrorCode::Damaged},
    {"samples-more-than-file.sor", std::nullopt, 1, 3},
    {"sections-more-than-file.sor", std::nullopt, 1, 3},
    {"events-more-than-block.sor", std::nullopt, 200, 1},
    {"strings-without-end.sor", std::nullopt, 200, 3},
    {"pulses-65535.sor", std::nullopt, 200, 3},
    {"fixed-parameters-empty.sor", std::nullopt, 200, 3},
    {"cut-in-samples.sor", std::nullopt, 104, 3},
    {"every-block-twice.sor", std::nullopt, 200, 3},
    {"scales-all-zero.sor", std::nullopt, 200, 3},
    {"positions-at-their-limits.sor", std::nullopt, 200, 3},
};

fs::path museum()
{
    return fs::path(WAVEFORM_TEST_DATA) / "bad";
}

class SorMuseum : public testing::TestWithParam<Exhibit>
{
};

TEST_P(SorMuseum, IsReadAsFarAsItCanBe)
{
    const auto file = otdr::readSorFile((museum() / GetParam().name).string());
    if (GetParam().error) {
        ASSERT_FALSE(file.ok());
        EXPECT_EQ(file.error().code, *GetParam().error) << file.error().message;
        return;
    }
    ASSERT_TRUE(file.ok()) << file.error().message;
    EXPECT_EQ(file->data.samples.size(), GetParam().samples);
    EXPECT_EQ(otdr::sor::eventKinds(*file).size(), GetParam().events);
    EXPECT_EQ(file->notes.empty(), std::string(GetParam().name) == "positions-at-their-limits.sor");
    (void)otdr::sor::axisOf(*file);
}

INSTANTIATE_TEST_SUITE_P(Exhibits, SorMuseum, testing::ValuesIn(kExhibits), [](const auto& info) {
    std::string name = fs::path(info.param.name).stem().string();
    for (char& character : name) {
        character = std::isalnum(static_cast<unsigned char>(character)) != 0 ? character : '_';
    }
    return name;
});

TEST(SorMuseumCatalogue, NamesEveryTraceThatIsThere)
{
    std::set<std::string> there;
    for (const auto& entry : fs::directory_iterator(museum())) {
        if (entry.path().extension() == ".sor") {
            there.insert(entry.path().filename().string());
        }
    }
    std::set<std::string> named;
    for (const Exhibit& exhibit : kExhibits) {
        named.insert(exhibit.name);
    }
    EXPECT_EQ(there, named);
}

} // namespace
