#pragma once
#include <xcb/xcb.h>

#include <chrono>
#include <condition_variable>
#include <cstdlib>
#include <memory>
#include <mutex>
#include <stdexcept>
#include <string>

#include "base/FileDescriptor.h"
#include "base/PixelRect.h"
#include "platform/DesktopPictureError.h"

namespace quillmar {

// Everything here speaks to the X server through XCB, which keeps errors and lost connections to the one
// connection that they happen on: several threads may each have their own, beside that of the toolkit.

/// Why the X server did not do what it was asked; the port tells it with the screen that it was about.
class X11Failure final : public std::runtime_error {
public:
    explicit X11Failure(DesktopPictureError::Case errorCase, const std::string& detail = {})
        : std::runtime_error(detail), case_(errorCase) {}
    DesktopPictureError::Case errorCase() const { return case_; }

private:
    DesktopPictureError::Case case_;
};

struct XcbFree {
    void operator()(void* answer) const { std::free(answer); }
};
template <class Reply>
using XcbReply = std::unique_ptr<Reply, XcbFree>;

/// Waits for the answer of one request; null when the server refuses or is gone.
template <class Reply, class Cookie>
XcbReply<Reply> xcbAnswer(Reply* (*wait)(xcb_connection_t*, Cookie, xcb_generic_error_t**),
                          xcb_connection_t* connection, Cookie cookie) {
    xcb_generic_error_t* error = nullptr;
    XcbReply<Reply> reply(wait(connection, cookie, &error));
    std::free(error);
    return reply;
}

/// The X server behind somebody's connection.
struct X11Server {
    xcb_connection_t* connection = nullptr;
    const xcb_screen_t* screen = nullptr;  ///< with the numbers of the connection's beginning
    xcb_window_t root() const { return screen->root; }
};

/// Part of a drawable, as the protocol counts.
inline xcb_rectangle_t xcbRectangle(const PixelRect& rect) {
    return {static_cast<std::int16_t>(rect.x), static_cast<std::int16_t>(rect.y),
            static_cast<std::uint16_t>(rect.width), static_cast<std::uint16_t>(rect.height)};
}

/// Lets one thread end the wait of another for a server that does not answer. Any thread.
class X11Interruption {
public:
    /// The connection that waits from now on is broken, and every later one at once.
    void interrupt();
    /// Waits until nobody waits; false when that takes longer.
    bool isLeftWithin(std::chrono::milliseconds limit);

private:
    friend class X11Connection;
    void enter(int socket);
    void leave();

    std::mutex mutex_;
    std::condition_variable left_;
    FileDescriptor socket_;       ///< guarded; a copy of what the connection waits for
    bool isInterrupted_ = false;  ///< guarded
};

/// A connection of its own to the X server, for one thread. Closing it undoes everything that was not
/// finished through it.
class X11Connection {
public:
    /// Opens `display`, an empty name being that of the environment. Throws `X11Failure`.
    explicit X11Connection(const std::string& display,
                           std::shared_ptr<X11Interruption> interruption = nullptr);
    X11Connection(const X11Connection&) = delete;
    X11Connection& operator=(const X11Connection&) = delete;
    ~X11Connection();

    const X11Server& server() const { return server_; }
    xcb_connection_t* get() const { return server_.connection; }
    /// Both ends are on this machine, so that files can be handed over.
    bool isLocal() const { return isLocal_; }
    /// Waits for the server; true when a request since the last call failed, other than those whose answer
    /// was waited for.
    bool hasFailed() const;
    /// Throws `X11Failure` when the connection was lost.
    void requireAlive() const;

private:
    X11Server server_;
    bool isLocal_ = false;
    std::shared_ptr<X11Interruption> interruption_;
};

/// Means to draw into pixmaps of the root window's depth; freed before its connection closes.
class X11Brush {
public:
    X11Brush(const X11Server& server, xcb_drawable_t drawable);
    X11Brush(const X11Brush&) = delete;
    X11Brush& operator=(const X11Brush&) = delete;
    ~X11Brush() { xcb_free_gc(connection_, context_); }
    xcb_gcontext_t get() const { return context_; }

private:
    xcb_connection_t* connection_;
    xcb_gcontext_t context_;
};

}  // namespace quillmar
