// The tokens of well-known text, for re2c: longest match, the earlier rule among equals.
#include "wkt/scanner.h"

#include <charconv>
#include <cstdio>

#include "platform/decimal_point.h"
#include "wkt/generated/grammar.h"
#include "wkt/number_scan.h"

namespace vexa {

namespace {

std::string_view textBetween(const unsigned char* first, const unsigned char* last) {
    return {reinterpret_cast<const char*>(first), static_cast<std::size_t>(last - first)};
}

void echo(const unsigned char* first, const unsigned char* last) {
    std::fwrite(first, 1, static_cast<std::size_t>(last - first), stdout);
}

}  // namespace

Scanner::Scanner(const ScanBuffer& buffer)
    : cursor_(reinterpret_cast<unsigned char*>(buffer.block)),
      end_(buffer.block + buffer.size),
      pointIsDecimal_(platform::decimalPoint() == ".") {}

int Scanner::found(int code, unsigned char* first, unsigned char* last) {
    token_ = textBetween(first, last);
    cursor_ = last;
    return code;
}

// Most of a text is numbers without an exponent: finding their end and their value in one go saves
// the machine below a step a digit. Null where there is none here, or one that needs a closer look.
unsigned char* Scanner::plainNumber(unsigned char* first, double& value) const {
    const unsigned char* const digit = *first == '-' ? first + 1 : first;
    if (*digit < '0' || *digit > '9') return nullptr;

    const char* const text = reinterpret_cast<const char*>(first);
    double number = 0;
    const auto result = std::from_chars(text, end_, number, std::chars_format::fixed);
    if (result.ec != std::errc{} || *result.ptr == 'e' || *result.ptr == 'E') return nullptr;

    value = number;
    return first + (result.ptr - text);
}

int Scanner::next(double& value) {
    unsigned char* cursor = cursor_;
    unsigned char* marker = cursor;
    for (;;) {
        unsigned char* const first = cursor;
        if (pointIsDecimal_) {
            if (unsigned char* const last = plainNumber(first, value)) {
                return found(TOK_REAL, first, last);
            }
        }
        /*!re2c
        re2c:yyfill:enable = 0;
        re2c:indent:string = "    ";
        re2c:indent:top = 2;
        re2c:define:YYCTYPE = "unsigned char";
        re2c:define:YYCURSOR = cursor;
        re2c:define:YYMARKER = marker;

        decimal  = "-"* [0-9]+ ("." [0-9]*)?;
        exponent = [eE] [-+] [0-9]+;

        "POINT"              | "point"              { return found(TOK_POINT, first, cursor); }
        "LINESTRING"         | "linestring"         { return found(TOK_LINESTRING, first, cursor); }
        "POLYGON"            | "polygon"            { return found(TOK_POLYGON, first, cursor); }
        "MULTIPOINT"         | "multipoint"         { return found(TOK_MULTIPOINT, first, cursor); }
        "MULTILINESTRING"    | "multilinestring"    { return found(TOK_MULTILINESTRING, first, cursor); }
        "MULTIPOLYGON"       | "multipolygon"       { return found(TOK_MULTIPOLYGON, first, cursor); }
        "GEOMETRYCOLLECTION" | "geometrycollection" { return found(TOK_GEOMETRYCOLLECTION, first, cursor); }

        decimal exponent? {
            value = numberOf({reinterpret_cast<char*>(first), reinterpret_cast<char*>(cursor)},
                             pointIsDecimal_);
            return found(TOK_REAL, first, cursor);
        }

        "("      { return found(TOK_LPAREN, first, cursor); }
        ")"      { return found(TOK_RPAREN, first, cursor); }
        ","      { return found(TOK_COMMA, first, cursor); }
        [ \t\n]+ { continue; }
        [\x00]   { return found(0, first, first); }

        // Stray characters. Those that no token starts with go out in one piece, and so do minus
        // signs that no digit follows: met one by one, each would look through all the others.
        "-"+                                  { echo(first, cursor); continue; }
        [^\x00PLMGplmg0-9(), \t\n\-]+         { echo(first, cursor); continue; }
        *                                     { echo(first, cursor); continue; }
        */
    }
}

}  // namespace vexa
