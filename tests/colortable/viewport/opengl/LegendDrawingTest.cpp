// Before the toolkit includes the same headers.
#define GL_GLEXT_PROTOTYPES

#include "GlState.h"
#include "GlTarget.h"
#include "HostileState.h"
#include "colortable/viewport/LegendView.h"

#include <GL/gl.h>
#include <GL/glext.h>

#include <lys_core/LyqFrame.h>

#include <QPainter>

#include <gtest/gtest.h>

#include <ToolkitApplication.h>

#include <dlfcn.h>

#include <algorithm>

using namespace legends;

namespace {

/** What was asked of OpenGL while drawing. */
struct Calls {
    std::vector<std::pair<int, int>> created;
    std::vector<std::pair<int, int>> uploaded;
    std::vector<std::pair<float, float>> coordinates;
    std::vector<GLuint> names;
    int proxies = 0;
    std::vector<std::string> order;  ///< of what makes, draws and gives back
};
Calls sCalls;

/** What OpenGL refuses from now on: the making of one texture. */
enum class Fault { None, Proxy, Name, Image };
Fault sFault = Fault::None;
int sFaultAt = 0;  ///< the texture's number in the frame

bool fails(Fault fault, std::size_t number) {
    return sFault == fault && sFaultAt == static_cast<int>(number);
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

}  // namespace

// These stand before OpenGL's own and pass on to them.
extern "C" {
void glTexImage2D(GLenum target, GLint level, GLint internal, GLsizei width, GLsizei height, GLint border,
                  GLenum format, GLenum type, const void* data) {
    bool refused = false;
    if (target == GL_TEXTURE_2D) {
        refused = fails(Fault::Image, sCalls.created.size());
        sCalls.created.emplace_back(width, height);
    }
    // A level below 0 is an error of OpenGL's own.
    next<decltype(glTexImage2D)>("glTexImage2D")(target, refused ? -1 : level, internal, width, height, border, format,
                                                 type, data);
}
void glGetTexLevelParameteriv(GLenum target, GLint level, GLenum name, GLint* values) {
    next<decltype(glGetTexLevelParameteriv)>("glGetTexLevelParameteriv")(target, level, name, values);
    if (target == GL_PROXY_TEXTURE_2D && name == GL_TEXTURE_WIDTH &&
        fails(Fault::Proxy, static_cast<std::size_t>(sCalls.proxies++))) {
        *values = 0;
    }
}
void glDeleteTextures(GLsizei count, const GLuint* names) {
    sCalls.order.emplace_back("delete");
    next<decltype(glDeleteTextures)>("glDeleteTextures")(count, names);
}
void glBegin(GLenum mode) {
    sCalls.order.emplace_back("begin");
    next<decltype(glBegin)>("glBegin")(mode);
}
void glPopMatrix() {
    sCalls.order.emplace_back("pop matrix");
    next<decltype(glPopMatrix)>("glPopMatrix")();
}
void glPopAttrib() {
    sCalls.order.emplace_back("pop attributes");
    next<decltype(glPopAttrib)>("glPopAttrib")();
}
void glTexSubImage2D(GLenum target, GLint level, GLint x, GLint y, GLsizei width, GLsizei height, GLenum format,
                     GLenum type, const void* data) {
    sCalls.uploaded.emplace_back(width, height);
    next<decltype(glTexSubImage2D)>("glTexSubImage2D")(target, level, x, y, width, height, format, type, data);
}
void glTexCoord2f(GLfloat s, GLfloat t) {
    sCalls.coordinates.emplace_back(s, t);
    next<decltype(glTexCoord2f)>("glTexCoord2f")(s, t);
}
void glGenTextures(GLsizei count, GLuint* names) {
    if (fails(Fault::Name, sCalls.names.size())) {
        std::fill_n(names, count, 0u);
    } else {
        next<decltype(glGenTextures)>("glGenTextures")(count, names);
    }
    sCalls.names.insert(sCalls.names.end(), names, names + count);
}
}

namespace {

constexpr int WIDTH = 400;
constexpr int HEIGHT = 300;
constexpr GlTarget::Color BACKGROUND{200, 100, 50};

/** An annotation of the host whose picture is known: each row another colour, every third pixel the key. */
class Stripes : public LyqAnnotation {
public:
    class Frame : public LyqFrame {
        void paintEvent(QPaintEvent*) override {
            QPainter painter(this);
            for (int y = 0; y < height(); ++y) {
                for (int x = 0; x < width(); ++x) {
                    painter.fillRect(x, y, 1, 1, color(x, y));
                }
            }
        }
    };
    static QColor color(int x, int y) {
        return x % 3 == 0 ? QColor(0, 0, 8) : QColor(255 - y, x % 256, x % 3 == 1 ? 9 : 200);
    }
    explicit Stripes(const QRect& place) : LyqAnnotation(nullptr, nullptr) {
        setFixedSize(place.size());
        setPosition(place.topLeft());
    }
    LyqFrame* widget() const override { return const_cast<Frame*>(&mFrame); }
    RenderingModeEnum getRenderingMode() const override { return RenderedImage; }

private:
    Frame mFrame;
};

class LegendDrawing : private ToolkitApplication, public testing::Test {
protected:
    LegendDrawing() {
        if (target.isValid()) {
            target.clear(BACKGROUND);
            drainErrors();
        }
        sCalls = {};
    }
    void SetUp() override { ASSERT_TRUE(target.isValid()) << "no OpenGL of the compatibility profile"; }
    static void drainErrors() {
        while (glGetError() != GL_NO_ERROR) {
        }
    }
    bool draw() { return view.driver().renderObject(LyrRendering::OVERLAY_PASS, nullptr); }

    /** Holds every pixel of the view against the images of the legends, where they are not of the key colour. */
    void expectLegends(const std::vector<const LyqAnnotation*>& annotations) {
        target.read();
        int wrong = 0;
        for (int y = 0; y < HEIGHT; ++y) {
            for (int x = 0; x < WIDTH; ++x) {
                GlTarget::Color expected = BACKGROUND;
                for (const LyqAnnotation* each : annotations) {
                    const QImage image = const_cast<LyqAnnotation*>(each)->getImage();
                    const QPoint at = QPoint(x, y) - each->frameGeometry().topLeft();
                    const QRgb pixel = image.valid(at) ? image.pixel(at) : qRgb(0, 0, 8);
                    if ((pixel & 0xffffffu) != 8u) {
                        expected = {qRed(pixel), qGreen(pixel), qBlue(pixel)};
                    }
                }
                wrong += target.at(x, y) == expected ? 0 : 1;
            }
        }
        EXPECT_EQ(wrong, 0);
    }

    Errors errors;
    LegendView view{WIDTH, HEIGHT};
    GlTarget target{WIDTH, HEIGHT};
    Legend a;
    Legend b;
};

std::string nameOf(const testing::TestParamInfo<int>& parameter) {
    std::string name = hostileStates()[static_cast<std::size_t>(parameter.param)].name;
    std::replace(name.begin(), name.end(), ' ', '_');
    return parameter.param == 0 ? "all_at_once" : name;
}

struct Refusal {
    const char* name;
    Fault fault;
    int at;
};

class LegendWithoutTexture : public LegendDrawing, public testing::WithParamInterface<Refusal> {
protected:
    ~LegendWithoutTexture() override { sFault = Fault::None; }
};

class LegendInHostileState : public LegendDrawing, public testing::WithParamInterface<int> {};

}  // namespace

TEST_F(LegendDrawing, puts_every_pixel_of_an_image_on_its_place_and_leaves_the_key_out) {
    const QRect place(50, 20, 31, 47);
    const LyrObjectPtr held(new Stripes(place));
    view.shown = {Entry{held, true, {}}};
    view.frame();
    ASSERT_TRUE(draw());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    target.read();
    for (int y = 0; y < HEIGHT; ++y) {
        for (int x = 0; x < WIDTH; ++x) {
            const QColor color = Stripes::color(x - place.left(), y - place.top());
            const bool transparent = !place.contains(x, y) || color == QColor(0, 0, 8);
            const GlTarget::Color expected =
                transparent ? BACKGROUND : GlTarget::Color{color.red(), color.green(), color.blue()};
            ASSERT_TRUE(target.at(x, y) == expected) << x << ' ' << y;
        }
    }
}

TEST_F(LegendDrawing, shows_legends_over_the_view_and_leaves_the_rest_untouched) {
    lyrSetValue(b.settings.get(), Lyr::Position, Lyr::Bottom);
    view.shown = {a.entry(), b.entry()};
    view.settle();
    ASSERT_TRUE(draw());
    expectLegends({&a.annotation(), &b.annotation()});
    // The default table begins with (1, 0, 0.6) at its upper end.
    bool found = false;
    for (int y = 0; y < HEIGHT; ++y) {
        found = found || target.at(a.annotation().frameGeometry().left() + 5, y) == GlTarget::Color{255, 0, 153};
    }
    EXPECT_TRUE(found);
}

TEST_F(LegendDrawing, draws_nothing_hidden_in_other_passes_and_in_views_without_pixels) {
    view.shown = {a.entry(false)};
    view.settle();
    EXPECT_TRUE(draw());
    view.shown = {a.entry()};
    view.settle();
    EXPECT_TRUE(view.driver().renderObject(LyrRendering::SCENE_PASS, nullptr));
    EXPECT_TRUE(view.driver().renderObject(-1, nullptr));
    view.resize(0.0f, HEIGHT);
    EXPECT_TRUE(draw());
    EXPECT_TRUE(sCalls.created.empty());
    expectLegends({});
}

TEST_F(LegendDrawing, of_no_legends_leaves_all_state_as_it_was) {
    view.settle();
    const GlState before = readGlState();
    EXPECT_TRUE(draw());
    EXPECT_EQ(describeDifference(before, readGlState()), "");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(LegendDrawing, uploads_an_image_of_300_by_40_into_a_texture_of_512_by_64) {
    const LyrObjectPtr held(new Stripes(QRect(10, 10, 300, 40)));
    view.shown = {Entry{held, true, {}}};
    view.frame();
    sCalls = {};
    ASSERT_TRUE(draw());
    EXPECT_EQ(sCalls.created, (std::vector<std::pair<int, int>>{{512, 64}}));
    EXPECT_EQ(sCalls.uploaded, (std::vector<std::pair<int, int>>{{300, 40}}));
    const float s = 300.0f / 512.0f;
    const float t = 40.0f / 64.0f;
    EXPECT_EQ(sCalls.coordinates, (std::vector<std::pair<float, float>>{{0, t}, {s, t}, {s, 0}, {0, 0}}));
    ASSERT_EQ(sCalls.names.size(), 1u);
    EXPECT_EQ(glIsTexture(sCalls.names[0]), GL_FALSE);
}

TEST_F(LegendDrawing, keeps_no_texture_from_frame_to_frame) {
    view.shown = {a.entry(), b.entry()};
    view.settle();
    sCalls = {};
    for (int i = 0; i < 3; ++i) {
        ASSERT_TRUE(draw());
    }
    EXPECT_EQ(sCalls.names.size(), 6u);
    for (const GLuint name : sCalls.names) {
        EXPECT_EQ(glIsTexture(name), GL_FALSE);
    }
}

TEST_F(LegendDrawing, stops_at_a_texture_that_cannot_be_made_and_gives_everything_back) {
    lyrSetValue(b.settings.get(), Lyr::Position, Lyr::Right);
    view.shown = {a.entry(), b.entry()};
    view.settle();
    delete a.annotation().widget()->parentWidget();  // no frame, no image
    a.annotation().updateImage();
    const GlState before = readGlState();
    EXPECT_FALSE(draw());
    EXPECT_EQ(describeDifference(before, readGlState()), "");
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    expectLegends({});
}

TEST_F(LegendDrawing, draws_what_comes_before_a_texture_that_cannot_be_made) {
    view.shown = {a.entry(), b.entry()};
    view.settle();
    delete b.annotation().widget()->parentWidget();
    b.annotation().updateImage();
    EXPECT_FALSE(draw());
    expectLegends({&a.annotation()});
}

TEST_F(LegendDrawing, reports_an_object_that_is_no_annotation_and_draws_the_others) {
    const LyrObjectPtr wrong(new LyrObject);
    view.shown = {Entry{wrong, true, {}}, a.entry()};
    view.settle();
    errors.codes.clear();
    EXPECT_TRUE(draw());
    EXPECT_EQ(errors.codes, std::vector<int>{WRONG_TYPE});
    expectLegends({&a.annotation()});
}

TEST_F(LegendDrawing, refuses_to_begin_where_a_stack_is_full) {
    view.shown = {a.entry()};
    view.settle();
    const auto fill = [](GLenum depth, GLenum limit, const std::function<void()>& push) {
        GLint now = 0;
        GLint most = 0;
        glGetIntegerv(depth, &now);
        glGetIntegerv(limit, &most);
        for (; now < most; ++now) {
            push();
        }
    };
    const auto pushMatrix = [](GLenum mode) {
        return [mode] {
            glMatrixMode(mode);
            glPushMatrix();
        };
    };
    const std::function<void()> fills[] = {
        [&] { fill(GL_ATTRIB_STACK_DEPTH, GL_MAX_ATTRIB_STACK_DEPTH, [] { glPushAttrib(GL_CURRENT_BIT); }); },
        [&] {
            fill(GL_CLIENT_ATTRIB_STACK_DEPTH, GL_MAX_CLIENT_ATTRIB_STACK_DEPTH,
                 [] { glPushClientAttrib(GL_CLIENT_PIXEL_STORE_BIT); });
        },
        [&] { fill(GL_MODELVIEW_STACK_DEPTH, GL_MAX_MODELVIEW_STACK_DEPTH, pushMatrix(GL_MODELVIEW)); },
        [&] { fill(GL_PROJECTION_STACK_DEPTH, GL_MAX_PROJECTION_STACK_DEPTH, pushMatrix(GL_PROJECTION)); },
        [&] {
            fill(GL_TEXTURE_STACK_DEPTH, GL_MAX_TEXTURE_STACK_DEPTH, pushMatrix(GL_TEXTURE));
            glActiveTexture(GL_TEXTURE3);
        }};
    const std::function<void()> pops[] = {[] { glPopAttrib(); }, [] { glPopClientAttrib(); },
                                          [] {
                                              glMatrixMode(GL_MODELVIEW);
                                              glPopMatrix();
                                          },
                                          [] {
                                              glMatrixMode(GL_PROJECTION);
                                              glPopMatrix();
                                          },
                                          [] {
                                              glActiveTexture(GL_TEXTURE0);
                                              glMatrixMode(GL_TEXTURE);
                                              glPopMatrix();
                                          }};
    for (std::size_t i = 0; i < std::size(fills); ++i) {
        fills[i]();
        const GlState before = i == 1 ? GlState() : readGlState();  // reading needs the clients' stack itself
        EXPECT_FALSE(draw()) << i;
        EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR)) << i;
        EXPECT_EQ(describeDifference(before, i == 1 ? GlState() : readGlState()), "") << i;
        pops[i]();
        EXPECT_TRUE(draw()) << i;
        fills[i]();
        pops[i]();
    }
}

TEST_F(LegendDrawing, fills_no_stack_though_one_place_is_left_only) {
    view.shown = {a.entry()};
    view.settle();
    GLint most = 0;
    glGetIntegerv(GL_MAX_ATTRIB_STACK_DEPTH, &most);
    for (GLint i = 1; i < most; ++i) {
        glPushAttrib(GL_CURRENT_BIT);
    }
    EXPECT_TRUE(draw());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    expectLegends({&a.annotation()});
}

TEST_F(LegendDrawing, refuses_a_program_that_only_its_use_keeps_alive) {
    view.shown = {a.entry()};
    view.settle();
    const GLuint program = glCreateProgram();
    const char* source = "void main() { gl_FragColor = vec4(1.0); }";
    const GLuint shader = glCreateShader(GL_FRAGMENT_SHADER);
    glShaderSource(shader, 1, &source, nullptr);
    glCompileShader(shader);
    glAttachShader(program, shader);
    glLinkProgram(program);
    glUseProgram(program);
    glDeleteProgram(program);
    EXPECT_FALSE(draw());
    GLint current = 0;
    glGetIntegerv(GL_CURRENT_PROGRAM, &current);
    EXPECT_EQ(static_cast<GLuint>(current), program);
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    glUseProgram(0);
}

TEST_F(LegendDrawing, keeps_to_the_hosts_scissor_and_viewport) {
    const LyrObjectPtr held(new Stripes(QRect(0, 0, 100, 100)));
    view.shown = {Entry{held, true, {}}};
    view.frame();
    glEnable(GL_SCISSOR_TEST);
    glScissor(0, HEIGHT - 50, 60, 50);  // the upper left 60 by 50 pixels
    ASSERT_TRUE(draw());
    target.read();
    EXPECT_TRUE(target.at(58, 49) == (GlTarget::Color{255 - 49, 58, 9 + 191 * (58 % 3 == 2 ? 1 : 0)}));
    EXPECT_TRUE(target.at(61, 49) == BACKGROUND);
    EXPECT_TRUE(target.at(58, 50) == BACKGROUND);
}

TEST_F(LegendDrawing, without_a_context_is_refused) {
    view.shown = {a.entry()};
    view.settle();
    QOpenGLContext* context = QOpenGLContext::currentContext();
    QSurface* surface = context->surface();
    context->doneCurrent();
    EXPECT_FALSE(draw());
    context->makeCurrent(surface);
    EXPECT_TRUE(draw());
}

TEST_P(LegendWithoutTexture, gives_back_what_was_taken_and_draws_no_later_legend) {
    lyrSetValue(b.settings.get(), Lyr::Position, Lyr::Right);
    view.shown = {a.entry(), b.entry()};
    view.settle();
    const GlState before = readGlState();
    sCalls = {};
    sFault = GetParam().fault;
    sFaultAt = GetParam().at;
    EXPECT_FALSE(draw());
    sFault = Fault::None;
    const Calls calls = sCalls;
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(describeDifference(before, readGlState()), "");
    const auto& order = calls.order;
    EXPECT_EQ(std::count(order.begin(), order.end(), "begin"), GetParam().at);
    EXPECT_EQ(std::count(order.begin(), order.end(), "pop attributes"), 1);
    const auto attributes = std::find(order.begin(), order.end(), "pop attributes");
    EXPECT_GE(std::count(order.begin(), attributes, "pop matrix"), 2);
    EXPECT_EQ(std::count(attributes, order.end(), "delete"), 0);
    // Each name that was given out is taken back, before the attributes are.
    const auto given = std::count_if(calls.names.begin(), calls.names.end(), [](GLuint name) { return name != 0; });
    EXPECT_EQ(std::count(order.begin(), attributes, "delete"), given);
    EXPECT_EQ(given, GetParam().at + (GetParam().fault == Fault::Image ? 1 : 0));
    for (const GLuint name : calls.names) {
        EXPECT_EQ(glIsTexture(name), GL_FALSE);
    }
    expectLegends(GetParam().at == 0 ? std::vector<const LyqAnnotation*>{}
                                     : std::vector<const LyqAnnotation*>{&a.annotation()});
    EXPECT_TRUE(draw());
    expectLegends({&a.annotation(), &b.annotation()});
}

INSTANTIATE_TEST_SUITE_P(
    , LegendWithoutTexture,
    testing::Values(Refusal{"proxy_of_the_first", Fault::Proxy, 0}, Refusal{"proxy_of_the_second", Fault::Proxy, 1},
                    Refusal{"name_of_the_first", Fault::Name, 0}, Refusal{"name_of_the_second", Fault::Name, 1},
                    Refusal{"image_of_the_first", Fault::Image, 0}, Refusal{"image_of_the_second", Fault::Image, 1}),
    [](const auto& parameter) { return std::string(parameter.param.name); });

TEST_P(LegendInHostileState, draws_the_same_picture_and_leaves_the_state_as_it_was) {
    const auto& states = hostileStates();
    lyrSetValue(b.settings.get(), Lyr::Position, Lyr::Right);
    view.shown = {a.entry(), b.entry()};
    view.settle();
    // The last parameter stands for all at once.
    const auto first = static_cast<std::size_t>(GetParam());
    for (std::size_t i = first; i < states.size() && (i == first || GetParam() == 0); ++i) {
        states[i].apply();
    }
    drainErrors();
    const GlState before = readGlState();
    ASSERT_GT(before.size(), 500u);
    if (first == states.size() - 1) {
        states.back().apply();  // reading drains errors
    }
    EXPECT_TRUE(draw());
    EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
    EXPECT_EQ(describeDifference(before, readGlState()), "");
    expectLegends({&a.annotation(), &b.annotation()});
}

TEST_P(LegendInHostileState, is_noticed_by_the_reader_of_states) {
    const auto& state = hostileStates()[static_cast<std::size_t>(GetParam())];
    const GlState before = readGlState();
    state.apply();
    drainErrors();
    const bool visible = GetParam() != 0 && state.name != "a stale error";
    EXPECT_EQ(describeDifference(before, readGlState()).empty(), !visible) << state.name;
}

INSTANTIATE_TEST_SUITE_P(, LegendInHostileState, testing::Range(0, static_cast<int>(hostileStates().size())), nameOf);
