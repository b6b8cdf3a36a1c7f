#pragma once

namespace quillmar {

/// The program's connection to the display server, through GTK. Made once, first of all that shows something,
/// on the main thread. When the connection breaks the program ends with status 1 and a line that says why:
/// nothing that it is for can go on, and nothing of it would show.
class GtkSession {
public:
    /// Throws `std::runtime_error` when there is no display server to be reached.
    GtkSession();
    GtkSession(const GtkSession&) = delete;
    GtkSession& operator=(const GtkSession&) = delete;
};

}  // namespace quillmar
