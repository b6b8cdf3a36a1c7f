#include "ui/GtkFileDialogs.h"

#include <gtk/gtk.h>

#include "async/WaitList.h"
#include "linux/glib/Ref.h"
#include "linux/glib/Signal.h"
#include "ui/FrontWindow.h"

namespace quillmar {
namespace {

GtkFileChooserAction actionOf(FileQuestion::Purpose purpose) {
    switch (purpose) {
        case FileQuestion::Purpose::open: return GTK_FILE_CHOOSER_ACTION_OPEN;
        case FileQuestion::Purpose::openFolder: return GTK_FILE_CHOOSER_ACTION_SELECT_FOLDER;
        case FileQuestion::Purpose::save: return GTK_FILE_CHOOSER_ACTION_SAVE;
    }
    return GTK_FILE_CHOOSER_ACTION_OPEN;
}

Ref<GtkFileChooserNative> dialogFor(const FileQuestion& question) {
    const bool saves = question.purpose == FileQuestion::Purpose::save;
    auto dialog = Ref<GtkFileChooserNative>::adopt(
        gtk_file_chooser_native_new(question.title.c_str(), frontWindow(), actionOf(question.purpose),
                                    question.accept.c_str(), question.cancel.c_str()));
    auto* chooser = GTK_FILE_CHOOSER(dialog.get());
    gtk_native_dialog_set_modal(GTK_NATIVE_DIALOG(dialog.get()), TRUE);
    gtk_file_chooser_set_local_only(chooser, TRUE);
    gtk_file_chooser_set_do_overwrite_confirmation(chooser, TRUE);
    if (saves) gtk_file_chooser_set_current_name(chooser, question.suggestedName.c_str());
    for (const FileQuestion::Type& type : question.types) {
        GtkFileFilter* filter = gtk_file_filter_new();
        gtk_file_filter_set_name(filter, type.name.c_str());
        for (const std::string& pattern : type.patterns) gtk_file_filter_add_pattern(filter, pattern.c_str());
        gtk_file_chooser_add_filter(chooser, filter);
    }
    return dialog;
}

/// The dialog on the screen; gone with its owner.
class Shown {
public:
    explicit Shown(GtkNativeDialog* dialog) : dialog_(dialog) { gtk_native_dialog_show(dialog_); }
    Shown(const Shown&) = delete;
    Shown& operator=(const Shown&) = delete;
    ~Shown() { gtk_native_dialog_destroy(dialog_); }

private:
    GtkNativeDialog* dialog_;
};

}  // namespace

Task<std::optional<std::filesystem::path>> GtkFileDialogs::choose(FileQuestion question) {
    const Ref<GtkFileChooserNative> dialog = dialogFor(question);
    std::optional<int> answer;
    WaitList answered;
    const Signal response =
        Signal::connect<void, int>(dialog.get(), "response", [&](GtkFileChooserNative*, int pressed) {
            answer = pressed;
            answered.resumeAll();
        });
    const Shown shown(GTK_NATIVE_DIALOG(dialog.get()));
    while (!answer) co_await answered.wait();
    if (*answer != GTK_RESPONSE_ACCEPT) co_return std::nullopt;
    const Owned<char> name(gtk_file_chooser_get_filename(GTK_FILE_CHOOSER(dialog.get())));
    if (!name) co_return std::nullopt;
    co_return std::filesystem::path(name.get());
}

}  // namespace quillmar
