#include "linux/render/ProcessPictureRendering.h"

#include <fcntl.h>
#include <sys/stat.h>

#include <cerrno>
#include <system_error>
#include <utility>

#include "async/WithinTime.h"
#include "linux/picture/CaptionDrawing.h"
#include "linux/render/RenderProcess.h"
#include "platform/PictureRenderingError.h"

namespace quillmar {
namespace {

namespace fs = std::filesystem;
using render::AnswerKind;
using Case = PictureRenderingError::Case;

/// A file to be read: regular, because a pipe or a device may never end. Waits for the disk.
FileDescriptor opened(const fs::path& path) {
    // Non-blocking, because a pipe without a writer would hold the open itself.
    FileDescriptor file(::open(path.c_str(), O_RDONLY | O_CLOEXEC | O_NONBLOCK | O_NOCTTY));
    const int error = errno;
    if (!file && (error == EMFILE || error == ENFILE || error == ENOMEM))
        throw std::system_error(error, std::generic_category(), path.string());
    struct stat status{};
    if (!file || ::fstat(file.get(), &status) != 0 || !S_ISREG(status.st_mode))
        throw PictureRenderingError(Case::unreadable, path.string());
    return file;
}

bool isCredible(PixelSize size) {
    constexpr int longest = render::maximumPictureSide;
    return size.width >= 1 && size.height >= 1 && size.width <= longest && size.height <= longest &&
           std::int64_t{size.width} * size.height <= render::maximumPixels;
}

RenderProcess started(const fs::path& program) {
    try {
        return RenderProcess(program);
    } catch (const std::system_error& error) {
        throw PictureRenderingError(Case::noDecoder, program.string(), 0, error.code().message());
    }
}

/// Waits for an answer of a certain kind. Throws what any other means, for the file at `path`.
Task<PixelSize> expected(RenderProcess& process, AnswerKind kind, std::string path) {
    const std::optional<render::Answer> answer = co_await process.answer();
    if (!answer) throw PictureRenderingError(Case::decoderFailed, path);
    if (answer->kind == kind && (kind != AnswerKind::size || isCredible(answer->size)))
        co_return answer->size;
    switch (answer->kind) {
        case AnswerKind::unreadable: throw PictureRenderingError(Case::unreadable, path);
        case AnswerKind::tooLarge: throw PictureRenderingError(Case::tooLarge, path);
        case AnswerKind::failed: throw PictureRenderingError(Case::failed, path);
        case AnswerKind::size:
        case AnswerKind::done: break;
    }
    throw PictureRenderingError(Case::decoderFailed, path);
}

/// Whether this is the file's fault, so that it is no picture.
bool isNoPicture(const PictureRenderingError& error) {
    return error.errorCase() == Case::unreadable || error.errorCase() == Case::tooLarge;
}

}  // namespace

/// A place among the requests that run; the next in line takes it over.
class ProcessPictureRendering::Turn {
public:
    explicit Turn(ProcessPictureRendering& owner) : owner_(&owner) { ++owner.running_; }
    Turn(const Turn&) = delete;
    Turn& operator=(const Turn&) = delete;
    ~Turn() {
        --owner_->running_;
        owner_->line_.resumeFirst();
    }

private:
    ProcessPictureRendering* owner_;
};

ProcessPictureRendering::ProcessPictureRendering(Executor& executor, fs::path program)
    : ProcessPictureRendering(executor, std::move(program), Limits()) {}
ProcessPictureRendering::ProcessPictureRendering(Executor& executor, fs::path program, Limits limits)
    : executor_(executor),
      program_(std::move(program)),
      limits_(limits),
      line_([this] { line_.resumeFirst(); }) {}

fs::path ProcessPictureRendering::installedProgram() {
    constexpr const char* name = "quillmar-render";
    const fs::path folder = fs::canonical("/proc/self/exe").parent_path();
    return fs::exists(folder / name) ? folder / name : folder.parent_path() / name;
}

/// A process is also ended by others, such as a system that is short of memory.
template <class T>
Task<T> ProcessPictureRendering::triedTwice(std::function<Task<T>()> work) {
    try {
        co_return co_await work();
    } catch (const PictureRenderingError& error) {
        if (error.errorCase() != Case::decoderFailed) throw;
    }
    co_return co_await work();
}

template <class T>
Task<T> ProcessPictureRendering::inTurn(fs::path file, std::function<Task<T>()> work) {
    // Asked again after the wait: someone may have come at the very turn of the loop in which one left.
    while (running_ >= limits_.requests) co_await line_.wait();
    const Turn turn(*this);
    try {
        co_return co_await withinTime(limits_.time, triedTwice(std::move(work)));
    } catch (const TimeoutError&) {
        const auto seconds = std::chrono::ceil<std::chrono::seconds>(limits_.time);
        throw PictureRenderingError(Case::tookTooLong, file.string(), seconds.count());
    }
}

Task<SharedPixels> ProcessPictureRendering::render(fs::path source, PictureComposer composer) {
    return inTurn<SharedPixels>(source, [=, this] { return renderNow(source, composer); });
}
Task<SharedPixels> ProcessPictureRendering::load(fs::path png, PixelSize size) {
    return inTurn<SharedPixels>(png, [=, this] { return loadNow(png, size); });
}
Task<bool> ProcessPictureRendering::isPicture(fs::path file) {
    return inTurn<bool>(file, [=, this] { return checkNow(file); });
}

Task<SharedPixels> ProcessPictureRendering::renderNow(fs::path source, PictureComposer composer) {
    const FileDescriptor file = co_await executor_.run([source] { return opened(source); });
    RenderProcess process = started(program_);
    const int picture = file.get();
    process.send(render::Order{.verb = render::Verb::render}, {&picture, 1});
    const PixelSize size = co_await expected(process, AnswerKind::size, source.string());

    const PictureComposition composition = composer(size);
    const auto canvas = std::make_shared<PixelBuffer>(composition.canvas);
    const int memory = canvas->descriptor();
    process.send(render::Drawing{.canvas = composition.canvas,
                                 .background = composition.background,
                                 .isTiled = composition.isTiled,
                                 .destination = composition.destination},
                 {&memory, 1});
    co_await expected(process, AnswerKind::done, source.string());
    if (composition.caption)
        co_await executor_.run([canvas, caption = *composition.caption] { drawCaption(caption, *canvas); });
    co_return canvas;
}

Task<SharedPixels> ProcessPictureRendering::loadNow(fs::path png, PixelSize size) {
    try {
        const FileDescriptor file = co_await executor_.run([png] { return opened(png); });
        const auto pixels = std::make_shared<PixelBuffer>(size);
        RenderProcess process = started(program_);
        const std::array descriptors{file.get(), pixels->descriptor()};
        process.send(render::Order{.verb = render::Verb::load, .size = size}, descriptors);
        co_await expected(process, AnswerKind::done, png.string());
        co_return pixels;
    } catch (const PictureRenderingError& error) {
        if (!isNoPicture(error)) throw;
    }
    co_return nullptr;
}

Task<bool> ProcessPictureRendering::checkNow(fs::path path) {
    try {
        const FileDescriptor file = co_await executor_.run([path] { return opened(path); });
        RenderProcess process = started(program_);
        const int picture = file.get();
        process.send(render::Order{.verb = render::Verb::check}, {&picture, 1});
        co_await expected(process, AnswerKind::done, path.string());
        co_return true;
    } catch (const PictureRenderingError& error) {
        if (!isNoPicture(error)) throw;
    }
    co_return false;
}

}  // namespace quillmar
