#include <lys_core/LyqExtension.h>

// A literal of a plug-in's QStringLiteral lies in the plug-in: copies that share it would outlive their text.
LyqExtension::LyqExtension(const QString& id, const QString& title, const char* module)
    : mId(id.constData(), id.size()), mTitle(title.constData(), title.size()), mModule(QString::fromUtf8(module)) {}

LyqExtension::~LyqExtension() = default;
