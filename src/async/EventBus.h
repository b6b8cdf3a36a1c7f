#pragma once
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <string>
#include <string_view>

namespace quillmar {

/// Name of a notification within the process, with the type of the object that it carries.
template <class Object>
struct NotificationName {
    std::string_view name;
};

/// Notifications within the process, by name, on the main thread. The desktop's own are another matter
/// (`RemoteNotificationCenter`). Observers are called in the order in which they came, synchronously. During
/// a notification observers may come and go: one that goes is not called any more, one that comes hears the
/// next.
class EventBus {
    struct Observer;
    using Observers = std::list<std::shared_ptr<Observer>>;

public:
    /// Ends the observation when it is destroyed. It may outlive the bus.
    class Observation {
    public:
        Observation() = default;
        ~Observation() { cancel(); }
        Observation(Observation&&) noexcept = default;
        Observation& operator=(Observation&& other) noexcept;
        /// From now on the callback is not called, not even later in the notification under way.
        void cancel();

    private:
        friend class EventBus;
        explicit Observation(std::shared_ptr<Observer> observer) : observer_(std::move(observer)) {}
        std::shared_ptr<Observer> observer_;
    };

    /// Calls `callback` for every notification of that name until the returned observation ends.
    template <class Object>
    [[nodiscard]] Observation observe(NotificationName<Object> name,
                                      std::function<void(const Object&)> callback) {
        return add(name.name, [callback = std::move(callback)](const void* object) {
            callback(*static_cast<const Object*>(object));
        });
    }
    /// Calls the observers of that name; has come back from all of them when it returns.
    template <class Object>
    void post(NotificationName<Object> name, const Object& object) {
        notify(name.name, &object);
    }

private:
    struct Observer {
        std::function<void(const void*)> callback;
        bool isObserving = true;
    };
    Observation add(std::string_view name, std::function<void(const void*)> callback);
    void notify(std::string_view name, const void* object);

    std::map<std::string, Observers, std::less<>> observers_;
};

}  // namespace quillmar
