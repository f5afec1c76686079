#include <lyr_core/LyrHostIdentifiers.h>
#include <lyr_core/LyrMetaClass.h>
#include <lys_core/LyrWorkspace.h>

#include <algorithm>
#include <cmath>

namespace {

/** More slices than any volume has: an absurd step does not overflow an index. */
constexpr double MOST_SLICES = 1 << 24;

bool isFinite(const LyrVector3<float>& v) {
    return std::isfinite(v.x) && std::isfinite(v.y) && std::isfinite(v.z);
}

}  // namespace

LyrWorkspace::LyrWorkspace() {
    metaClass();  // now, when there is memory, rather than when somebody looks through all objects
    mSceneMax.setValue({1.0f, 1.0f, 1.0f});
    mSceneStep.setValue({1.0f, 1.0f, 1.0f});
    mCrossPosition.setValue({0.5f, 0.5f, 0.5f});
    mLayers.setComputed(true);  // who puts a layer in takes it out: neither copied nor stored
    addProperty(Lyr::CrossPosition, &mCrossPosition);
    addProperty(Lyr::SceneMin, &mSceneMin);
    addProperty(Lyr::SceneMax, &mSceneMax);
    addProperty(Lyr::SceneStep, &mSceneStep);
    addProperty(Lyr::LayerList, &mLayers);
}

const LyrMetaClass& LyrWorkspace::metaClass() {
    static const LyrMetaClass meta("LyrWorkspace", sizeof(LyrWorkspace), &LyrObject::metaClass(), nullptr, "lys_core",
                                   0, nullptr, 0, 0, 0, false);
    return meta;
}

const LyrMetaClass& LyrWorkspace::getMetaClass() const {
    return metaClass();
}

bool LyrWorkspace::setCrossPosition(const LyrVector3<float>& position) {
    if (!isFinite(position)) {
        return false;
    }
    LyrVector3<float> inside;
    for (int axis = 0; axis < 3; ++axis) {
        inside[axis] = std::min(std::max(position[axis], getSceneMin()[axis]), getSceneMax()[axis]);
    }
    return mCrossPosition.setValue(inside);
}

bool LyrWorkspace::setScene(const LyrVector3<float>& min, const LyrVector3<float>& max, const LyrVector3<float>& step) {
    bool valid = isFinite(min) && isFinite(max) && isFinite(step);
    for (int axis = 0; axis < 3; ++axis) {
        valid = valid && max[axis] > min[axis] && step[axis] > 0.0f;
    }
    if (!valid || !mSceneMin.setValue(min) || !mSceneMax.setValue(max) || !mSceneStep.setValue(step)) {
        return false;
    }
    LyrVector3<float> middle;
    for (int axis = 0; axis < 3; ++axis) {
        middle[axis] = getSlicePosition(axis, getSliceCount(axis) / 2);
    }
    return mCrossPosition.setValue(middle);
}

bool LyrWorkspace::isInScene(const LyrVector3<float>& position) const {
    bool inside = true;
    for (int axis = 0; axis < 3; ++axis) {
        inside = inside && position[axis] >= getSceneMin()[axis] && position[axis] <= getSceneMax()[axis];
    }
    return inside;
}

int LyrWorkspace::getSliceCount(int axis) const {
    const double extent = double(getSceneMax()[axis]) - double(getSceneMin()[axis]);
    const double count = std::round(extent / double(getSceneStep()[axis]));
    return count >= 1.0 ? static_cast<int>(std::min(count, MOST_SLICES)) : 1;
}

int LyrWorkspace::getSliceIndex(int axis, float coordinate) const {
    const double place = std::floor((double(coordinate) - double(getSceneMin()[axis])) / double(getSceneStep()[axis]));
    const int last = getSliceCount(axis) - 1;
    return place >= 1.0 ? static_cast<int>(std::min(place, double(last))) : 0;
}

float LyrWorkspace::getSlicePosition(int axis, int index) const {
    const double place = double(getSceneMin()[axis]) + (index + 0.5) * double(getSceneStep()[axis]);
    return static_cast<float>(place);
}

bool LyrWorkspace::addLayer(LyrObject* layer) {
    const auto links = mLayers.view();
    const LyrObjectLink link(layer, nullptr, -1);
    if (!layer || std::find(links.begin(), links.end(), link) != links.end()) {
        return false;
    }
    const auto end = static_cast<long long>(links.size());
    return mLayers.insertArrayItems(end, end, &link);
}

bool LyrWorkspace::removeLayer(LyrObject* layer) {
    const auto links = mLayers.view();
    const auto found = std::find(links.begin(), links.end(), LyrObjectLink(layer, nullptr, -1));
    if (!layer || found == links.end()) {
        return false;
    }
    const auto index = static_cast<long long>(found - links.begin());
    return mLayers.removeArrayItems(index, index);
}
