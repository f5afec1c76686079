#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/ApplicationPlaceholders.h>

#include "fuzz/FuzzTargets.h"

void fuzz::placeholders(Bytes bytes) {
    static const LyrObjectRefPtr object("LyrColorLookupTableRenderSettings", Lyr::TransientScope);
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
    bool unknown = false;
    ApplicationPlaceholders::internalToDisplayText(text, object.get(), &unknown);
    require(!unknown || text.contains(QLatin1String("%{")), "only a placeholder can be unknown");
    const QString edited = ApplicationPlaceholders::internalToEditText(text, object.get());
    const QString internal = ApplicationPlaceholders::editToInternalText(edited, object.get());
    require(ApplicationPlaceholders::internalToEditText(internal, object.get()) == edited,
            "a template that was edited without a change is shown the same");
}
