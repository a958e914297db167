// CBString: the program's string class. A thin layer over std::string offering exactly the
// operations the interpreter uses, with the bounds-checked character access that raises
// CBStringException ("CBString::character index out of bounds").
#pragma once

#include <cstdarg>
#include <stdexcept>
#include <string>

class CBStringException : public std::exception {
public:
    explicit CBStringException(const char* msg) : sMessage(msg) {}
    const char* what() const noexcept override { return sMessage.c_str(); }

private:
    std::string sMessage;
};

class CBString {
public:
    CBString() = default;
    CBString(const char* s) : s_(s ? s : "") {}  // NOLINT: implicit on purpose, like the original class
    CBString(const char* s, size_t n) : s_(s, n) {}
    explicit CBString(char c) : s_(1, c) {}
    CBString(const std::string& s) : s_(s) {}  // NOLINT
    CBString(const CBString&) = default;
    CBString(CBString&&) noexcept = default;
    CBString& operator=(const CBString&) = default;
    CBString& operator=(CBString&&) noexcept = default;
    CBString& operator=(const char* s) {
        if (s)
            s_.assign(s);
        else
            s_.clear();
        return *this;
    }
    CBString& operator=(char c) {
        s_.assign(1, c);
        return *this;
    }

    operator const char*() const { return s_.c_str(); }  // NOLINT
    const char* data() const { return s_.c_str(); }
    int length() const { return static_cast<int>(s_.size()); }
    bool empty() const { return s_.empty(); }
    const std::string& str() const { return s_; }
    std::string& str() { return s_; }

    // Bounds-checked read of one character.
    char character(int i) const {
        if (i < 0 || i >= length()) throw CBStringException("CBString::character index out of bounds");
        return s_[static_cast<size_t>(i)];
    }

    CBString& operator+=(const CBString& b) {
        s_ += b.s_;
        return *this;
    }
    CBString& operator+=(const char* b) {
        if (b) s_ += b;
        return *this;
    }
    CBString& operator+=(char c) {
        s_ += c;
        return *this;
    }
    void assign(const char* p, size_t n) {
        // A text from elsewhere that fits the room already there (the tokenizer's case) is copied
        // without the general path's checks for overlap and growth.
        const char* room = s_.data();
        if (n <= s_.capacity() && (p + n <= room || p >= room + s_.capacity() + 1)) {
            s_.clear();
            s_.append(p, n);
        } else {
            s_.assign(p, n);
        }
    }
    void append(const char* p, size_t n) { s_.append(p, n); }

    // printf-style formatting: format replaces the content, formata appends to it.
    void format(const char* fmt, ...) __attribute__((format(printf, 2, 3)));
    void formata(const char* fmt, ...) __attribute__((format(printf, 2, 3)));

    // Substring of len characters from left; parts outside the string are left out.
    CBString midstr(int left, int len) const;
    // Position of b at or after pos, or -1.
    int find(const char* b, int pos = 0) const;
    int find(char c, int pos = 0) const;
    // Position of the last c at or before pos, or -1; a negative pos finds nothing.
    int reversefindchr(char c, int pos) const;
    void ltrim(const char* chars = " \t\v\f\r\n");
    void rtrim(const char* chars = " \t\v\f\r\n");
    void trunc(int len) {
        if (len >= 0 && len < length()) s_.resize(static_cast<size_t>(len));
    }
    void toupper();
    void insertchrs(int pos, int len, char c);
    void clear() { s_.clear(); }

    friend bool operator==(const CBString& a, const CBString& b) { return a.s_ == b.s_; }
    friend bool operator!=(const CBString& a, const CBString& b) { return a.s_ != b.s_; }
    friend bool operator<(const CBString& a, const CBString& b) { return Compare(a, b) < 0; }
    friend bool operator>(const CBString& a, const CBString& b) { return Compare(a, b) > 0; }
    friend bool operator<=(const CBString& a, const CBString& b) { return Compare(a, b) <= 0; }
    friend bool operator>=(const CBString& a, const CBString& b) { return Compare(a, b) >= 0; }
    friend bool operator==(const CBString& a, const char* b) { return a.s_ == (b ? b : ""); }
    friend bool operator!=(const CBString& a, const char* b) { return !(a == b); }

    friend CBString operator+(const CBString& a, const CBString& b) {
        CBString r(a);
        r += b;
        return r;
    }
    friend CBString operator+(const CBString& a, const char* b) {
        CBString r(a);
        r += b;
        return r;
    }
    friend CBString operator+(const char* a, const CBString& b) {
        CBString r(a);
        r += b;
        return r;
    }

private:
    // Byte-wise comparison, bytes taken as unsigned.
    static int Compare(const CBString& a, const CBString& b) { return a.s_.compare(b.s_); }
    void vformata(const char* fmt, va_list ap);

    std::string s_;
};
