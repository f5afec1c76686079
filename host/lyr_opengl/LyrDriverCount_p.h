#pragma once

#include <string>

namespace LyrSceneGraph {

/** Counts the drivers of a module while it lives; a module with drivers is not unloaded. */
class DriverCount {
public:
    DriverCount() = default;
    ~DriverCount();
    DriverCount(const DriverCount&) = delete;
    DriverCount& operator=(const DriverCount&) = delete;

    void set(const char* module, long long count);
    const std::string& getModule() const noexcept { return mModule; }

private:
    std::string mModule;
    long long mCount = 0;
};

/** Gives up drivers when a module's code goes. */
class DriverHolder {
public:
    DriverHolder();
    virtual void dropDriversOf(const char* module) = 0;

protected:
    ~DriverHolder();
};

}  // namespace LyrSceneGraph
