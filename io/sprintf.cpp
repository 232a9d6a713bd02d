#include "io/sprintf.h"

#include "core/text.h"
#include "io/format_call.h"
#include "io/text_argument.h"
#include "runtime/constants.h"

#include <algorithm>
#include <cstring>

namespace arrlib {

namespace {

// Text that grows as it comes.
struct GrowingText {
    HeapArray<char> characters;
    std::size_t size = 0;

    static bool write(void* to, char const* text, std::size_t count)
    {
        GrowingText& growing = *static_cast<GrowingText*>(to);
        if (!growing.characters.grow(growing.size + count))
            return false;
        std::memcpy(growing.characters.data() + growing.size, text, count);
        growing.size += count;
        return true;
    }
};

// A text in one block.
struct WholeText : TextSource {
    WholeText(char const* text, std::size_t size)
    {
        at = text;
        end = text + size;
    }

private:
    bool fill() override { return false; }
};

} // namespace

void FormatOutputs::assign(M<double> const& count, M<double> const& message) const
{
    auto const give = [](Mr<double> const* to, M<double> const& value) {
        if (to) {
            Mr<double> output = *to;
            output = value;
        }
    };
    give(count_, count);
    give(message_, message);
}

M<double> const* argument_at(FormatArguments arguments, int position)
{
    for (FormatArgument const& argument : arguments) {
        if (position < argument.count())
            return &argument[position];
        position -= argument.count();
    }
    return nullptr;
}

bool print_arguments(ParsedFormat& format, FormatArguments arguments, int position, TextOutput& out)
{
    bool printed = true, any = false;
    for (FormatArgument const& argument : arguments) {
        for (int k = std::min(position, argument.count()); printed && k < argument.count(); ++k) {
            printed = print_value(format, argument[k], out);
            any = true;
        }
        position = std::max(position - argument.count(), 0);
    }
    if (!any)
        printed = print_elements(format, nullptr, 0, out);
    return out.flush() && printed;
}

static M<double> escaped_text(M<double> const& format)
{
    char text[format_limit + 1];
    Mstr(format, text, format_limit);
    translate_escapes(text);
    return TM(text);
}

static M<double> printed_text(FormatArguments arguments)
{
    GrowingText text;
    ParsedFormat format(*argument_at(arguments, 0));
    TextOutput out({&text, GrowingText::write});
    if (!print_arguments(format, arguments, 1, out))
        return x_M;
    if (text.size > static_cast<std::size_t>(most_elements)) {
        error(messages::out_of_memory);
        return x_M;
    }
    return text_value(text.characters.data(), text.size);
}

M<double> print_text(FormatArguments arguments, FormatOutputs const& outputs)
{
    M<double> const made = argument_at(arguments, 1) ? printed_text(arguments) : escaped_text(*argument_at(arguments, 0));
    if (made.isstr())
        outputs.assign(M<double>(made.size()), TM(""));
    else
        outputs.assign(x_M, x_M);
    return made;
}

ScanCall::ScanCall(M<double> const& format, M<double> const* size) : format_(format), size_(size ? ScanSize(*size) : ScanSize()) {}

M<double> ScanCall::result(FormatOutputs const& outputs, bool reported) const
{
    if (reported || !size_.valid() || !scanned_.complete) {
        outputs.assign(x_M, x_M);
        return x_M;
    }
    M<double> const made = size_.shape(scanned_, format_.only_text);
    outputs.assign(M<double>(static_cast<double>(scanned_.count)), TM(""));
    return made;
}

M<double> scan_text(M<double> const& text, M<double> const& format, M<double> const* size, FormatOutputs const& outputs)
{
    M<double> full_text = text;
    if (full_text.issparse())
        full_text.getfull();
    // Still sparse when its full form could not be had, which has been reported.
    std::size_t const length = full_text.issparse() ? 0 : static_cast<std::size_t>(full_text.size());
    HeapArray<char> characters(length);
    ScanCall call(format, size);
    bool const ready = characters && !full_text.issparse();
    if (ready && call.valid()) {
        std::size_t count = 0;
        while (count < length && (characters[count] = character_code(full_text.addr()[count])))
            ++count;
        WholeText source(characters.data(), count);
        call.run(source, ScanFrom::text);
    }
    return call.result(outputs, !ready);
}

} // namespace arrlib
