#pragma once

namespace quillmar::sandbox {

/// Bounds of the process: memory, processor time, open files, no core, no written file; it ends with its
/// parent and cannot be looked into. Before anything foreign is read. Throws `std::system_error`.
void setBounds();

enum class Files {
    none,
    fonts,  ///< the system's and the user's, to read; none either where the kernel cannot restrict it to them
};
/// From here on the process computes, and talks over the descriptors that it has: no network, no other
/// program or process, no file but those of `files`. Every other call of the system fails with EPERM. To be
/// called while there is one thread. Throws `std::system_error` when the kernel refuses.
void lockIn(Files files);

}  // namespace quillmar::sandbox
