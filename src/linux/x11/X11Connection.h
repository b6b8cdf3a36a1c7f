#pragma once
#include <cstdint>
#include <string>

struct _XDisplay;
struct _XGC;

namespace quillmar {

/// A connection of its own to the X server. Closing it undoes everything that was not finished through it.
class X11Connection {
public:
    /// Opens `display`, an empty name being that of the environment. Throws `std::runtime_error`.
    explicit X11Connection(const std::string& display);
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();
    _XDisplay* get() const { return display_; }

private:
    _XDisplay* display_;
};

/// Means to draw into a pixmap; freed before its connection closes.
class X11Brush {
public:
    X11Brush(_XDisplay* display, std::uint32_t pixmap);
    X11Brush(const X11Brush&) = delete;
    X11Brush& operator=(const X11Brush&) = delete;
    ~X11Brush();
    _XGC* get() const { return context_; }

private:
    _XDisplay* display_;
    _XGC* context_;
};

/// While it lives, errors that the X server reports on this connection are kept here, where they would end
/// the program otherwise. Traps nest; they end in the opposite order. Main thread.
class X11ErrorTrap {
public:
    explicit X11ErrorTrap(_XDisplay* display);
    X11ErrorTrap(const X11ErrorTrap&) = delete;
    X11ErrorTrap& operator=(const X11ErrorTrap&) = delete;
    ~X11ErrorTrap();

    /// Waits for the server; true when anything since the trap's beginning failed.
    bool failed();

private:
    struct Handler;
    _XDisplay* display_;
    unsigned long firstSerial_;
    bool hasFailed_ = false;
    X11ErrorTrap* outer_;
};

}  // namespace quillmar
