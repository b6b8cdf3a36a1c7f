#include "linux/desktop/VariantText.h"

namespace quillmar {

std::string variantText(GVariant* value) {
    const Owned<GVariant> held(g_variant_ref_sink(value));
    const Owned<char> text(g_variant_print(held.get(), TRUE));
    return text.get();
}

Owned<GVariant> variantOfText(const std::string& text) {
    Owned<GError> error;
    Owned<GVariant> value(g_variant_parse(nullptr, text.c_str(), nullptr, nullptr, GErrorOut(error)));
    throwIfFailed(error);
    return value;
}

std::string stringOfVariantText(const std::string& text) {
    const Owned<GVariant> value(
        text.empty() ? nullptr
                     : g_variant_parse(G_VARIANT_TYPE_STRING, text.c_str(), nullptr, nullptr, nullptr));
    return value ? g_variant_get_string(value.get(), nullptr) : "";
}

}  // namespace quillmar
