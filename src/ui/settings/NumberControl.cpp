#include <array>
#include <cmath>
#include <optional>

#include "ui/settings/RowControl.h"

namespace quillmar {
namespace {

constexpr int secondsPerMinute = 60;
constexpr int secondsPerHour = 3600;

/// A field for a number with two small buttons. How the number is written is for the heirs to say.
class SpinControl : public RowControl {
public:
    explicit SpinControl(Wish wish)
        : spin_(gtk_spin_button_new_with_range(0, 1, 1)),
          scrolling_(passScrolling(spin_)),
          wish_(std::move(wish)) {
        // With every digit: who goes on to "Apply" by the mouse has not left the field yet.
        typing_ = Signal::connect<void>(GTK_EDITABLE(spin_), "changed", [this](GtkEditable*) {
            if (const auto typed = parse(gtk_entry_get_text(GTK_ENTRY(spin_)));
                typed && isWithin(*typed) && *typed != shown_)
                tell(*typed);
        });
        changing_ =
            Signal::connect<void>(GTK_SPIN_BUTTON(spin_), "value-changed", [this](GtkSpinButton* spin) {
                if (const double value = gtk_spin_button_get_value(spin); value != shown_) tell(value);
            });
    }
    GtkWidget* field() const final { return spin_; }

protected:
    /// What a text says; empty if it is no number.
    virtual std::optional<double> parse(const char* text) const = 0;

    GtkSpinButton* spin() const { return GTK_SPIN_BUTTON(spin_); }
    void fill(double value, double minimum, double maximum, double step, double page) {
        shown_ = value;
        GtkAdjustment* range = gtk_spin_button_get_adjustment(spin());
        // What is being typed is written in the field's own way only when the field is left.
        const bool isTyping =
            gtk_widget_has_focus(spin_) && parse(gtk_entry_get_text(GTK_ENTRY(spin_))) == value;
        gtk_adjustment_configure(range, isTyping ? gtk_adjustment_get_value(range) : value, minimum, maximum,
                                 step, page, 0);
        if (!isTyping) gtk_spin_button_set_value(spin(), value);
    }

private:
    bool isWithin(double value) const {
        GtkAdjustment* range = gtk_spin_button_get_adjustment(spin());
        return value >= gtk_adjustment_get_lower(range) && value <= gtk_adjustment_get_upper(range);
    }
    void tell(double value) {
        shown_ = value;
        wish_(value);
    }

    GtkWidget* spin_;
    Signal scrolling_;
    Wish wish_;
    double shown_ = 0;
    Signal typing_;
    Signal changing_;
};

class NumberControl final : public SpinControl {
public:
    explicit NumberControl(Wish wish)
        : SpinControl(std::move(wish)),
          box_(gtk_box_new(GTK_ORIENTATION_HORIZONTAL, 6)),
          unit_(gtk_label_new(nullptr)) {
        setStyleClass(unit_, "dim-label");
        gtk_container_add(GTK_CONTAINER(box_), field());
        gtk_container_add(GTK_CONTAINER(box_), unit_);
        gtk_widget_show(field());
    }
    GtkWidget* widget() const override { return box_; }
    void show(const SettingsRow& row) override {
        const auto& number = std::get<SettingsRow::Number>(row.control);
        gtk_spin_button_set_digits(spin(), static_cast<guint>(number.digits));
        fill(number.value, number.minimum, number.maximum, number.step, number.step * 10);
        setTextOrHide(unit_, number.unit);
        if (!number.unit.empty()) nameForAccess(field(), row.title + ", " + number.unit);
    }

protected:
    std::optional<double> parse(const char* text) const override {
        char* end = nullptr;
        const double value = ::strtod(text, &end);  // as the field reads it, with the comma of the locale
        if (end == text || *end != 0) return {};
        return value;
    }

private:
    GtkWidget* box_;
    GtkWidget* unit_;
};

/// Hours, minutes and seconds in one field, which needs no words in any language.
class DurationControl final : public SpinControl {
public:
    explicit DurationControl(Wish wish) : SpinControl(std::move(wish)) {
        gtk_spin_button_set_numeric(spin(), FALSE);
        gtk_entry_set_width_chars(GTK_ENTRY(field()), 8);
        reading_ = Signal::connect<gint, gdouble*>(
            spin(), "input", [this](GtkSpinButton* spin, gdouble* value) -> gint {
                const auto parsed = parse(gtk_entry_get_text(GTK_ENTRY(spin)));
                if (parsed) *value = *parsed;
                return parsed ? TRUE : GTK_INPUT_ERROR;
            });
        writing_ = Signal::connect<gboolean>(spin(), "output", [](GtkSpinButton* spin) -> gboolean {
            const auto seconds = std::lround(gtk_spin_button_get_value(spin));
            char* text = g_strdup_printf("%ld:%02ld:%02ld", seconds / secondsPerHour,
                                         seconds / secondsPerMinute % 60, seconds % 60);
            setEntryText(GTK_ENTRY(spin), text);
            g_free(text);
            return TRUE;
        });
    }
    GtkWidget* widget() const override { return field(); }
    void show(const SettingsRow& row) override {
        const auto& duration = std::get<SettingsRow::Duration>(row.control);
        fill(duration.seconds, duration.minimum, duration.maximum, secondsPerMinute, secondsPerHour);
    }

protected:
    std::optional<double> parse(const char* text) const override {
        std::array<unsigned, 3> parts{};
        int length = 0;
        if (::sscanf(text, "%4u:%2u:%2u%n", parts.data(), &parts[1], &parts[2], &length) != 3 ||
            text[length] != 0 || parts[1] > 59 || parts[2] > 59)
            return {};
        return static_cast<double>((parts[0] * secondsPerHour) + (parts[1] * secondsPerMinute) + parts[2]);
    }

private:
    Signal reading_;
    Signal writing_;
};

}  // namespace

std::unique_ptr<RowControl> makeNumberControl(RowControl::Wish wish) {
    return std::make_unique<NumberControl>(std::move(wish));
}

std::unique_ptr<RowControl> makeDurationControl(RowControl::Wish wish) {
    return std::make_unique<DurationControl>(std::move(wish));
}

}  // namespace quillmar
