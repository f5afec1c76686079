#include <colortable/model/LyrColorLookupTable.h>
#include <lyr_core/LyrObjectPtr.h>

#include <cstdio>

int main() {
    const LyrObjectRefPtr object("LyrColorLookupTable", 1);
    const auto* table = dynamic_cast<const LyrColorLookupTable*>(object.get());
    if (table == nullptr) {
        std::puts("the factory made no table");
        return 1;
    }
    // A new table runs from blue at -1 to red at 1.
    const float values[] = {-1.0f, 1.0f};
    LyrRGBA<float> colors[2];
    if (!table->getColors(2, values, colors)) {
        std::puts("a new table did not colour its own boundaries");
        return 1;
    }
    const LyrRGBA<float> blue(0.0f, 0.0f, 1.0f);
    const LyrRGBA<float> red(1.0f, 0.0f, 0.0f);
    if (!(colors[0] == blue) || !(colors[1] == red)) {
        std::puts("a new table does not run from blue to red");
        return 1;
    }
    return 0;
}
