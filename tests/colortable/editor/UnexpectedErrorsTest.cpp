#include <lyr_core/LyrError.h>

#include <gtest/gtest.h>

#include <memory>

namespace {

/** Fails the running case for every error that the case itself does not listen for. */
class UnexpectedErrors : public LyrError::Listener {
public:
    bool errorEmitted(const LyrError::Message& message) override {
        ADD_FAILURE() << "unexpected error: " << message.getText();
        return false;
    }
};

class Environment : public testing::Environment {
public:
    void SetUp() override { mListener = std::make_unique<UnexpectedErrors>(); }
    void TearDown() override { mListener.reset(); }

private:
    std::unique_ptr<UnexpectedErrors> mListener;
};

[[maybe_unused]] const testing::Environment* const environment = testing::AddGlobalTestEnvironment(new Environment);

}  // namespace
