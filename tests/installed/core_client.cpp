#include <lyr_core/LyrRGBA.h>
#include <lyr_core/LyrTimestamp.h>

#include <cstdio>

int main() {
    const LyrTimestamp first = LyrTimestamp::getCurrentTimestamp();
    const LyrTimestamp second = LyrTimestamp::getCurrentTimestamp();
    if (first.isNull() || !(first < second)) {
        std::puts("the later timestamp is not the greater one");
        return 1;
    }
    const LyrRGBA<float> black = LyrRGBA<float>::BLACK();
    if (black.red != 0.0f || black.alpha != 1.0f) {
        std::puts("black is not opaque black");
        return 1;
    }
    return 0;
}
