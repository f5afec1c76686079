#pragma once

#include <QGuiApplication>

#include <string>

namespace lys::cli {

/** The toolkit's fonts and painters for a program without a display. Numbers and texts follow the given locale, the C
 * locale for an empty name. One at a time, made before anything is measured or painted. */
class GuiSession {
public:
    /** Throws Failure (Unusable) for a locale that is not known. */
    explicit GuiSession(const std::string& localeName);
    ~GuiSession();

private:
    struct Environment {
        Environment();
    };

    Environment mEnvironment;
    int mArgumentCount = 1;
    char mProgram[12] = "colortable";
    char* mArguments[2] = {mProgram, nullptr};
    QGuiApplication mApplication;
};

}  // namespace lys::cli
