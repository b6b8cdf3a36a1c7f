#include "async/EventBus.h"

#include <vector>

namespace quillmar {

EventBus::Observation& EventBus::Observation::operator=(Observation&& other) noexcept {
    std::swap(observer_, other.observer_);
    return *this;
}

void EventBus::Observation::cancel() {
    if (const auto observer = std::exchange(observer_, nullptr)) observer->isObserving = false;
}

EventBus::Observation EventBus::add(std::string_view name, std::function<void(const void*)> callback) {
    auto observer = std::make_shared<Observer>(std::move(callback));
    observers_[std::string(name)].push_back(observer);
    return Observation(std::move(observer));
}

void EventBus::notify(std::string_view name, const void* object) {
    const auto found = observers_.find(name);
    if (found == observers_.end()) return;
    std::erase_if(found->second, [](const auto& observer) { return !observer->isObserving; });
    const std::vector<std::shared_ptr<Observer>> present(found->second.begin(), found->second.end());
    for (const auto& observer : present) {
        if (observer->isObserving) observer->callback(object);
    }
}

}  // namespace quillmar
