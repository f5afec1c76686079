#include "Picture.h"
#include "ProgramRun.h"

#include <Sanitizers.h>
#include <gtest/gtest.h>

#include <regex>
#include <string>
#include <vector>

namespace {

using Pixel = Picture::Pixel;

constexpr Pixel BLACK{0, 0, 0, 255};
constexpr Pixel WHITE{255, 255, 255, 255};

std::vector<std::string> legend(std::vector<std::string> more) {
    std::vector<std::string> arguments{"legend", "--table", "Rainbow"};
    arguments.insert(arguments.end(), more.begin(), more.end());
    return arguments;
}

bool holds(const std::string& text, const std::string& part) {
    return text.find(part) != std::string::npos;
}

/** The text without blanks and line ends, to look for JSON whatever its layout. */
std::string packed(const std::string& text) {
    std::string result;
    for (const char letter : text) {
        if (letter != ' ' && letter != '\n') {
            result += letter;
        }
    }
    return result;
}

std::string settingsFile(const std::string& properties) {
    return R"({"format": "lyr-object", "version": 1, "class": "LyrColorLookupTableRenderSettings", "properties": {)" +
           properties + "}}";
}

}  // namespace

TEST(Legend, a_picture_shows_the_bar_on_opaque_white) {
    const TestFolder folder;
    const ProgramRun run = ProgramRun::of(legend({"--size", "100x200", "-o", folder / "bar.png"}));
    ASSERT_EQ(run.status, 0) << run.error;
    EXPECT_EQ(run.out, "");
    const Picture picture = Picture::decode(readBytes(folder / "bar.png"));
    ASSERT_EQ(picture.width, 100u);
    ASSERT_EQ(picture.height, 200u);
    EXPECT_EQ(picture.at(99, 0), WHITE);
    // Without caption: frames at rows 4, 16, 187 and 199, 12 columns wide; pink above, violet below.
    for (const std::uint32_t row : {4u, 16u, 187u, 199u}) {
        EXPECT_EQ(picture.at(5, row), BLACK) << row;
    }
    EXPECT_EQ(picture.at(5, 10), (Pixel{255, 0, 153, 255}));
    EXPECT_EQ(picture.at(5, 193), (Pixel{153, 0, 255, 255}));
    EXPECT_EQ(picture.at(5, 17), (Pixel{255, 0, 0, 255}));
    EXPECT_EQ(picture.at(5, 186), (Pixel{0, 0, 255, 255}));
    EXPECT_EQ(picture.at(0, 100), BLACK);
    EXPECT_EQ(picture.at(11, 100), BLACK);
    EXPECT_EQ(picture.at(12, 100), WHITE);
}

TEST(Legend, the_description_names_rectangles_and_labels) {
    const ProgramRun run = ProgramRun::of(legend({"--size", "100x200", "--describe"}));
    ASSERT_EQ(run.status, 0) << run.error;
    const std::string text = packed(run.out);
    EXPECT_TRUE(holds(text, R"("horizontal":false)")) << text;
    EXPECT_TRUE(holds(text, R"("bar":[0,5,13,195],"labelArea":[15,5,85,195])")) << text;
    EXPECT_TRUE(holds(text, R"("extensions":{"lower":true,"upper":true,"length":12})")) << text;
    EXPECT_TRUE(holds(text, R"("sections":[{"index":1,"rect":[0,16,12,172]}])")) << text;
    EXPECT_TRUE(holds(text, R"({"value":-1,"text":"-1",)")) << text;
    EXPECT_TRUE(holds(text, R"("sizeHint":[)")) << text;
}

TEST(Legend, single_properties_of_the_settings_can_be_replaced) {
    const ProgramRun run =
        ProgramRun::of(legend({"--size", "300x80", "--describe", "--set", "Position=Bottom", "--set", "Thickness=20",
                               "--set", "DescriptionTemplate=Deviation [%l]", "--set", "Color=1,0,0", "--set",
                               "HasOutline=false", "--set", "Size=0.5"}));
    ASSERT_EQ(run.status, 0) << run.error;
    const std::string text = packed(run.out);
    EXPECT_TRUE(holds(text, R"("horizontal":true)"));
    EXPECT_TRUE(holds(text, R"("text":"Deviation[mm]")"));
    EXPECT_TRUE(std::regex_search(text, std::regex(R"("bar":\[\d+,\d+,\d+,22\])"))) << text;
}

TEST(Legend, every_property_of_the_settings_can_be_replaced) {
    const std::vector<std::string> plain{"--size", "300x200", "--describe"};
    const std::string before = ProgramRun::of(legend(plain)).out;
    const auto with = [&](const std::string& assignment) {
        auto arguments = legend(plain);
        arguments.insert(arguments.end(), {"--set", assignment});
        const ProgramRun run = ProgramRun::of(arguments);
        EXPECT_EQ(run.status, 0) << assignment << run.error;
        EXPECT_EQ(run.error, "") << assignment;
        return run.out;
    };
    for (const char* shown : {"Font=Arial,20,-1,5,50,0,0,0,0,0", "Thickness=30", "Position=Top", "TextPosition=Left",
                              "TextAlignment=Left", "DescriptionTemplate=Caption"}) {
        EXPECT_NE(with(shown), before) << shown;
    }
    for (const char* elsewhere : {"Color=1,0,0,1", "OutlineColor=0.5,0.5,0.5", "HasOutline=false", "Rendering=false",
                                  "Size=0.25", "Alignment=Top"}) {
        EXPECT_EQ(with(elsewhere), before) << elsewhere;
    }
}

TEST(Legend, colours_and_outline_of_the_text_are_those_of_the_settings) {
    const TestFolder folder;
    auto arguments = legend({"--size", "100x200", "-o", folder / "bar.png", "--set", "Color=1,0.5,0", "--set"});
    const auto count = [&](const char* outline, const Pixel& color) {
        auto all = arguments;
        all.emplace_back(outline);
        all.insert(all.end(), {"--set", "OutlineColor=0,0,1"});
        EXPECT_EQ(ProgramRun::of(all).status, 0);
        const Picture picture = Picture::decode(readBytes(folder / "bar.png"));
        int found = 0;
        for (std::uint32_t y = 0; y < picture.height; ++y) {
            for (std::uint32_t x = 15; x < picture.width; ++x) {
                found += picture.at(x, y) == color;
            }
        }
        return found;
    };
    EXPECT_GT(count("HasOutline=true", {0, 0, 255, 255}), 20);
    EXPECT_EQ(count("HasOutline=false", {0, 0, 255, 255}), 0);
    EXPECT_GT(count("HasOutline=false", {255, 127, 0, 255}), 0);
}

TEST(Legend, settings_of_a_class_that_is_not_there_are_read_as_their_base) {
    const TestFolder folder;
    const std::string path = folder.write(
        "settings.json",
        R"({"format": "lyr-object", "version": 1, "class": "LyrWallThicknessColorLookupTableRenderSettings",
        "base": "LyrColorLookupTableRenderSettings", "properties": {"Position": "Bottom", "Extra": 5,
        "DescriptionTemplate": "<%{value.type}> %{who} %l"}})");
    const ProgramRun run = ProgramRun::of(legend({"--settings", path, "--size", "300x80", "--describe"}));
    ASSERT_EQ(run.status, 0) << run.error;
    EXPECT_TRUE(holds(packed(run.out), R"("horizontal":true)"));
    EXPECT_TRUE(holds(packed(run.out), R"("text":"<>%{who}mm")")) << run.out;
}

TEST(Legend, unit_and_locale_change_the_texts_but_not_the_values) {
    const ProgramRun run =
        ProgramRun::of(legend({"--size", "100x60", "--describe", "--unit", "cm", "--locale", "de_DE"}));
    ASSERT_EQ(run.status, 0) << run.error;
    EXPECT_TRUE(holds(packed(run.out), R"({"value":-1,"text":"-0,1",)")) << run.out;
}

TEST(Legend, a_vector_picture_holds_text_and_the_colours_of_the_pixels) {
    const TestFolder folder;
    const std::vector<std::string> common{"--size", "100x200", "--set", "HasOutline=false", "--set", "Color=0,0,0"};
    auto arguments = legend(common);
    arguments.insert(arguments.end(), {"-o", folder / "bar.svg"});
    ASSERT_EQ(ProgramRun::of(arguments).status, 0);
    arguments.back() = folder / "bar.png";
    ASSERT_EQ(ProgramRun::of(arguments).status, 0);
    const std::string svg = readBytes(folder / "bar.svg");
    EXPECT_TRUE(std::regex_search(svg, std::regex(R"(<text[^>]*>-0\.6</text>)"))) << svg;
    EXPECT_FALSE(holds(svg, "<image"));
    const Picture picture = Picture::decode(readBytes(folder / "bar.png"));
    for (const std::uint32_t row : {17u, 60u, 101u, 140u, 186u}) {
        const Pixel pixel = picture.at(5, row);
        char color[8];
        std::snprintf(color, sizeof(color), "#%02x%02x%02x", pixel[0], pixel[1], pixel[2]);
        EXPECT_TRUE(holds(svg, color)) << color;
    }
}

TEST(Legend, a_page_is_made_of_text_as_well) {
    const TestFolder folder;
    ASSERT_EQ(ProgramRun::of(legend({"--size", "100x200", "-o", folder / "bar.pdf"})).status, 0);
    const std::string pdf = readBytes(folder / "bar.pdf");
    EXPECT_EQ(pdf.substr(0, 5), "%PDF-");
    EXPECT_TRUE(holds(pdf, "/Font"));
    EXPECT_FALSE(holds(pdf, "/Subtype /Image"));
}

TEST(Legend, a_file_of_settings_is_used_with_its_fallbacks) {
    const TestFolder folder;
    const std::string path = folder.write("settings.json", settingsFile(R"("Position": "Top", "Font": "junk, nothing",
        "Thickness": -7, "Alignment": "Gradient")"));
    const ProgramRun run = ProgramRun::of(legend({"--settings", path, "--size", "300x80", "--describe"}));
    ASSERT_EQ(run.status, 0) << run.error;
    EXPECT_TRUE(holds(run.error, "Font \"junk, nothing\"")) << run.error;
    EXPECT_TRUE(holds(run.error, "Thickness -7")) << run.error;
    EXPECT_TRUE(holds(packed(run.out), R"("horizontal":true)"));
}

TEST(Legend, absurd_sizes_and_lengths_take_no_memory_for_what_is_not_there) {
    const TestFolder folder;
    const std::string path = folder.write("settings.json", settingsFile(R"("Thickness": 9000000000000000000,
        "Font": "Arial,1000,-1,5,50,0,0,0,0,0")"));
    for (const char* size : {"1x1", "20000x10", "10x20000"}) {
        const ProgramRun run =
            ProgramRun::of(legend({"--settings", path, "--size", size, "--dpi", "9600", "-o", folder / "x.png"}));
        EXPECT_EQ(run.status, 0) << size << run.error;
        EXPECT_TRUE(SANITIZED || run.peakMemory < 512L << 20) << size << ' ' << run.peakMemory;
    }
}

TEST(Legend, what_cannot_be_used_is_refused_and_leaves_nothing) {
    const TestFolder folder;
    const std::string unknown = folder.write("unknown.json", settingsFile(R"("Position": "Nowhere")"));
    const std::string table = folder.write(
        "table.json", R"({"format": "lyr-object", "version": 1, "class": "LyrColorLookupTable", "properties": {}})");
    const std::string out = folder / "bar.png";
    const std::vector<std::vector<std::string>> cases = {
        {"--size", "0x100", "-o", out},
        {"--size", "100", "-o", out},
        {"--size", "100000x100000", "-o", out},
        {"--size", "100x100"},
        {"--size", "100x100", "-o", folder / "bar.bmp"},
        {"--size", "100x100", "-o", out, "--set", "Nothing=1"},
        {"--size", "100x100", "-o", out, "--set", "Description=x"},
        {"--size", "100x100", "-o", out, "--set", "Thickness=thick"},
        {"--size", "100x100", "-o", out, "--set", "HasOutline=7"},
        {"--size", "100x100", "-o", out, "--unit", "kg"},
        {"--size", "100x100", "-o", out, "--dpi", "-1"},
        {"--size", "100x100", "-o", out, "--locale", "nowhere"},
        {"--size", "100x100", "-o", out, "--settings", unknown},
        {"--size", "100x100", "-o", out, "--settings", table},
        {"--size", "100x100", "-o", out, "--settings", folder / "none.json"},
    };
    for (const auto& more : cases) {
        const ProgramRun run = ProgramRun::of(legend(more));
        EXPECT_EQ(run.status, 2) << more.back() << run.error;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.error, "");
    }
    EXPECT_EQ(folder.names(), (std::vector<std::string>{"table.json", "unknown.json"}));
}

TEST(Legend, a_text_that_is_not_utf8_is_refused_because_no_file_could_hold_it) {
    for (const char* text : {"DescriptionTemplate=%\xea\x03", "Font=Arial\xff,10,-1,5,50,0,0,0,0,0"}) {
        const ProgramRun run = ProgramRun::of(legend({"--size", "100x100", "--describe", "--set", text}));
        EXPECT_EQ(run.status, 2) << run.error;
        EXPECT_EQ(run.out, "");
        EXPECT_NE(run.error.find("UTF-8"), std::string::npos) << run.error;
    }
    const ProgramRun run =
        ProgramRun::of(legend({"--size", "100x100", "--describe", "--set", "DescriptionTemplate=\xc3\xa4"}));
    EXPECT_EQ(run.status, 0) << run.error;
}

TEST(Legend, an_output_that_cannot_be_written_prints_no_description) {
    const ProgramRun run = ProgramRun::of(legend({"--size", "100x100", "--describe", "-o", "/nowhere/bar.png"}));
    EXPECT_EQ(run.status, 1);
    EXPECT_EQ(run.out, "");
}
