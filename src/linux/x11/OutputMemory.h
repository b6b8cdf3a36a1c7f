#pragma once
#include <filesystem>

#include "async/Executor.h"
#include "linux/x11/OutputIdentity.h"
#include "storage/ApplicationDirectories.h"

namespace quillmar {

/// Where every program of ours looks up which monitor is which.
std::filesystem::path outputIdentitiesFile(const Environment& environment);

/// What the file holds; nothing known when it cannot be read.
OutputIdentities rememberedIdentities(const std::filesystem::path& file);

/// The identities of outputs, remembered in a file.
class OutputMemory {
public:
    /// Reads the file. What is new is written to it on `files`, in a folder that is made when needed; what
    /// cannot be kept is logged and forgotten with the process. `files` must outlive this.
    OutputMemory(std::filesystem::path file, Executor& files)
        : file_(std::move(file)), files_(files), identities_(rememberedIdentities(file_)) {}

    /// In the outputs' order.
    std::vector<Uuid> identify(const std::vector<ConnectedOutput>& outputs);

private:
    std::filesystem::path file_;
    Executor& files_;
    OutputIdentities identities_;
};

}  // namespace quillmar
