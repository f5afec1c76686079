#include <colortable/LibraryInit.h>
#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrObjectPtr.h>
#include <lys_core/ApplicationPlaceholders.h>

#include "fuzz/FuzzTargets.h"

fuzz::Accepted fuzz::placeholders(Bytes bytes) {
    // Registers the placeholders: without, no text has one.
    [[maybe_unused]] static const bool ready = (LYQCOLORTABLE::LibraryInit::init(), true);
    static const LyrObjectRefPtr object("LyrColorLookupTableRenderSettings", Lyr::TransientScope);
    const QString text = QString::fromUtf8(reinterpret_cast<const char*>(bytes.data()), qsizetype(bytes.size()));
    bool unknown = false;
    const QString shown = ApplicationPlaceholders::internalToDisplayText(text, object.get(), &unknown);
    require(!unknown || text.contains(QLatin1String("%{")), "only a placeholder can be unknown");
    const QString edited = ApplicationPlaceholders::internalToEditText(text, object.get());
    const QString internal = ApplicationPlaceholders::editToInternalText(edited, object.get());
    require(ApplicationPlaceholders::internalToEditText(internal, object.get()) == edited,
            "a template that was edited without a change is shown the same");
    const QString typed = ApplicationPlaceholders::editToInternalText(text, object.get());
    return bitIf(!unknown && shown != text, 0) | bitIf(edited != text, 1) | bitIf(typed != text, 2);
}
