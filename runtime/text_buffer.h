// Bounded text building in a fixed buffer; allocates nothing, so it also serves crash reports.
#ifndef ARRLIB_RUNTIME_TEXT_BUFFER_H
#define ARRLIB_RUNTIME_TEXT_BUFFER_H

#include <cstddef>
#include <cstdint>

namespace arrlib {

// Appends to a zero-terminated text; what does not fit is cut.
class TextAppender {
public:
    TextAppender(char* buffer, std::size_t capacity, std::size_t length) : buffer_(buffer), capacity_(capacity), length_(length)
    {
        buffer_[length_] = '\0';
    }

    std::size_t length() const { return length_; }
    // True when nothing has been cut.
    bool whole() const { return whole_; }
    void cut_back(std::size_t length) { buffer_[length_ = length] = '\0'; }

    TextAppender& text(char const* source)
    {
        for (; source && *source; ++source)
            put(*source);
        return *this;
    }
    TextAppender& put(char character)
    {
        if (length_ + 1 >= capacity_) {
            whole_ = false;
            return *this;
        }
        buffer_[length_++] = character;
        buffer_[length_] = '\0';
        return *this;
    }
    TextAppender& decimal(int value)
    {
        char digits[12];
        int count = 0;
        std::uint32_t rest = value < 0 ? 0u - static_cast<std::uint32_t>(value) : static_cast<std::uint32_t>(value);
        do {
            digits[count++] = static_cast<char>('0' + rest % 10);
            rest /= 10;
        } while (rest);
        if (value < 0)
            digits[count++] = '-';
        while (count > 0)
            put(digits[--count]);
        return *this;
    }
    TextAppender& hexadecimal8(std::uint32_t value)
    {
        for (int shift = 28; shift >= 0; shift -= 4)
            put("0123456789ABCDEF"[(value >> shift) & 15]);
        return *this;
    }

private:
    char* buffer_;
    std::size_t capacity_;
    std::size_t length_;
    bool whole_ = true;
};

// Appends the "called from" lines of nx_error_stack, innermost first, as far as whole lines fit.
void append_call_stack(TextAppender& out);

} // namespace arrlib

#endif
