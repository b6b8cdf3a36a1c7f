#pragma once
#include <vector>

#include "async/WaitList.h"
#include "platform/ControlChannel.h"

namespace quillmar {

class FakeControlChannel final : public ControlServing {
public:
    std::function<Task<ControlReply>(ControlCall)> handler;
    std::vector<ControlEvent> told;
    void serve(std::function<Task<ControlReply>(ControlCall)> h) override { handler = std::move(h); }
    Task<void> tell(ControlEvent event) override {
        told.push_back(std::move(event));
        while (isHeld_) co_await held_.wait();
    }
    /// What is told does not get on its way.
    void hold() { isHeld_ = true; }
    void letThrough() {
        isHeld_ = false;
        held_.resumeAll();
    }

private:
    bool isHeld_ = false;
    WaitList held_;
};

}  // namespace quillmar
