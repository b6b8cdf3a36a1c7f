#pragma once
#include <vector>

#include "platform/Clipboard.h"
#include "platform/FileChoosing.h"

namespace quillmar {

/// A user who chooses the file that the test names, or none.
class FakeFileChooser final : public FileChoosing {
public:
    std::vector<FileQuestion> asked;
    std::optional<std::filesystem::path> answer;
    Task<std::optional<std::filesystem::path>> choose(FileQuestion question) override {
        asked.push_back(std::move(question));
        co_return answer;
    }
};

class FakeClipboard final : public ClipboardWriting {
public:
    std::string text;
    void setText(const std::string& copied) override { text = copied; }
};

}  // namespace quillmar
