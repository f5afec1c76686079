#include <lyr_core/LyrModuleLoader.h>
#include <lyr_opengl/LyrDriverCount_p.h>

#include <algorithm>
#include <map>
#include <vector>

namespace {

/** What lives in the views of the process. */
class DriverCensus : public LyrModuleLoader::UnloadGuard {
public:
    static DriverCensus& instance() {
        LyrModuleLoader::getLoadedModules();  // made first, so that it outlives the census
        static DriverCensus census;
        return census;
    }

    ~DriverCensus() override { LyrModuleLoader::removeUnloadGuard(this); }

    LyrString reasonToStay(const char* module) override {
        const auto found = mCounts.find(module);
        if (found == mCounts.end() || found->second == 0) {
            return {};
        }
        return LyrString::fromUtf8((std::to_string(found->second) +
                                    " rendering drivers of it draw in views; take its objects out of the views first")
                                       .c_str());
    }

    void moduleGoes(const char* module) override {
        for (LyrSceneGraph::DriverHolder* holder : std::vector(mHolders)) {
            holder->dropDriversOf(module);
        }
    }

    std::map<std::string, long long> mCounts;
    std::vector<LyrSceneGraph::DriverHolder*> mHolders;

private:
    DriverCensus() { LyrModuleLoader::addUnloadGuard(this); }
};

}  // namespace

namespace LyrSceneGraph {

DriverCount::~DriverCount() {
    set(mModule.c_str(), 0);
}

void DriverCount::set(const char* module, long long count) {
    auto& counts = DriverCensus::instance().mCounts;
    if (mCount != 0) {
        counts[mModule] -= mCount;
    }
    mModule = module;
    mCount = count;
    if (mCount != 0) {
        counts[mModule] += mCount;
    }
}

DriverHolder::DriverHolder() {
    DriverCensus::instance().mHolders.push_back(this);
}

DriverHolder::~DriverHolder() {
    std::erase(DriverCensus::instance().mHolders, this);
}

}  // namespace LyrSceneGraph
