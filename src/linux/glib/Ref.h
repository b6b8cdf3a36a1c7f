#pragma once
#include <gio/gio.h>

#include <memory>
#include <utility>

namespace quillmar {

/// One strong reference to a GObject.
template <class T>
class Ref {
public:
    Ref() = default;
    /// Takes the reference that a constructor or a "transfer full" call returned; sinks a floating one.
    static Ref adopt(T* object) {
        if (object && g_object_is_floating(object)) g_object_ref_sink(object);
        return Ref(object);
    }
    /// Adds a reference to an object that someone else holds.
    static Ref share(T* object) { return Ref(object ? static_cast<T*>(g_object_ref(object)) : nullptr); }

    Ref(const Ref& other) : Ref(share(other.object_)) {}
    Ref(Ref&& other) noexcept : object_(std::exchange(other.object_, nullptr)) {}
    Ref& operator=(Ref other) noexcept {
        std::swap(object_, other.object_);
        return *this;
    }
    ~Ref() {
        if (object_) g_object_unref(object_);
    }
    T* get() const { return object_; }
    explicit operator bool() const { return object_ != nullptr; }

private:
    explicit Ref(T* object) : object_(object) {}
    T* object_ = nullptr;
};

namespace detail {
struct GlibFree {
    void operator()(GError* error) const { g_error_free(error); }
    void operator()(char* text) const { g_free(text); }
    void operator()(GBytes* bytes) const { g_bytes_unref(bytes); }
    void operator()(GVariant* value) const { g_variant_unref(value); }
    void operator()(GDBusNodeInfo* info) const { g_dbus_node_info_unref(info); }
};
}  // namespace detail

/// A GLib value that is no GObject, owned.
template <class T>
using Owned = std::unique_ptr<T, detail::GlibFree>;

/// Receives a `GError**` out-parameter: `call(..., GErrorOut(error))`.
class GErrorOut {
public:
    explicit GErrorOut(Owned<GError>& target) : target_(target) {}
    GErrorOut(const GErrorOut&) = delete;
    GErrorOut& operator=(const GErrorOut&) = delete;
    ~GErrorOut() { target_.reset(error_); }
    operator GError**() { return &error_; }

private:
    Owned<GError>& target_;
    GError* error_ = nullptr;
};

/// Throws `CancellationError` for a cancelled operation and `std::runtime_error` for any other error; an
/// empty one passes.
void throwIfFailed(const Owned<GError>& error);

}  // namespace quillmar
