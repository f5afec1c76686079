#include <lyr_volume/LyrCasting.h>
#include <lyr_volume/LyrVolume.h>

#include <cstdio>
#include <vector>

int main() {
    LyrCasting::Options options;
    options.edge = 16;
    std::shared_ptr<const LyrVolume> casting;
    std::string error;
    if (!LyrCasting::create(options, casting, error)) {
        std::printf("no casting: %s\n", error.c_str());
        return 1;
    }
    // The part lies in a cube of 64 mm, so 16 voxels are 4 mm each.
    const LyrVolume::Size size = casting->size();
    if (size != LyrVolume::Size{16, 16, 16} || casting->description().spacing[0] != 4.0) {
        std::puts("the casting has another size than asked for");
        return 1;
    }
    std::vector<float> slice(16 * 16);
    if (!casting->slice(LyrVolume::Axis::Z, 15, slice) || casting->slice(LyrVolume::Axis::Z, 16, slice)) {
        std::puts("the last slice is not the last one");
        return 1;
    }
    return 0;
}
