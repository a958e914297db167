#include "cbstring.h"

#include <cctype>
#include <cstdio>
#include <cstring>

void CBString::vformata(const char* fmt, va_list ap) {
    char small[256];
    va_list copy;
    va_copy(copy, ap);
    int n = vsnprintf(small, sizeof small, fmt, copy);
    va_end(copy);
    if (n < 0) return;
    if (static_cast<size_t>(n) < sizeof small) {
        s_.append(small, static_cast<size_t>(n));
        return;
    }
    size_t old = s_.size();
    s_.resize(old + static_cast<size_t>(n) + 1);
    vsnprintf(&s_[old], static_cast<size_t>(n) + 1, fmt, ap);
    s_.resize(old + static_cast<size_t>(n));
}

void CBString::format(const char* fmt, ...) {
    s_.clear();
    va_list ap;
    va_start(ap, fmt);
    vformata(fmt, ap);
    va_end(ap);
}

void CBString::formata(const char* fmt, ...) {
    va_list ap;
    va_start(ap, fmt);
    vformata(fmt, ap);
    va_end(ap);
}

CBString CBString::midstr(int left, int len) const {
    if (left < 0) {
        len += left;
        left = 0;
    }
    if (len <= 0 || left >= length()) return CBString();
    if (len > length() - left) len = length() - left;
    return CBString(s_.c_str() + left, static_cast<size_t>(len));
}

int CBString::find(const char* b, int pos) const {
    if (pos < 0 || pos > length()) return -1;
    size_t r = s_.find(b ? b : "", static_cast<size_t>(pos));
    return r == std::string::npos ? -1 : static_cast<int>(r);
}

int CBString::find(char c, int pos) const {
    if (pos < 0 || pos > length()) return -1;
    size_t r = s_.find(c, static_cast<size_t>(pos));
    return r == std::string::npos ? -1 : static_cast<int>(r);
}

int CBString::reversefindchr(char c, int pos) const {
    if (pos < 0 || s_.empty()) return -1;
    if (pos >= length()) pos = length() - 1;
    for (int i = pos; i >= 0; --i)
        if (s_[static_cast<size_t>(i)] == c) return i;
    return -1;
}

void CBString::ltrim(const char* chars) {
    size_t i = s_.find_first_not_of(chars);
    s_.erase(0, i == std::string::npos ? s_.size() : i);
}

void CBString::rtrim(const char* chars) {
    size_t i = s_.find_last_not_of(chars);
    s_.resize(i == std::string::npos ? 0 : i + 1);
}

void CBString::toupper() {
    for (char& c : s_) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
}

void CBString::insertchrs(int pos, int len, char c) {
    if (len <= 0 || pos < 0) return;
    if (pos > length()) s_.resize(static_cast<size_t>(pos), c);
    s_.insert(static_cast<size_t>(pos), static_cast<size_t>(len), c);
}
