// What the program uses of fmt, compiled into it: a command is mostly the time that loading libraries takes.
#include <fmt/format-inl.h>

FMT_BEGIN_NAMESPACE
namespace detail {
template auto dragonbox::to_decimal(float x) noexcept -> dragonbox::decimal_fp<float>;
template auto dragonbox::to_decimal(double x) noexcept -> dragonbox::decimal_fp<double>;
template FMT_API auto thousands_sep_impl(locale_ref) -> thousands_sep_result<char>;
template FMT_API auto decimal_point_impl(locale_ref) -> char;
template FMT_API void buffer<char>::append(const char*, const char*);
template FMT_API void vformat_to(buffer<char>&, string_view, basic_format_args<FMT_BUFFER_CONTEXT(char)>,
                                 locale_ref);
}  // namespace detail
FMT_END_NAMESPACE
