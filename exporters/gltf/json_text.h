#pragma once

#include "frame/host/matrix.h"

#include <cstdint>
#include <string>
#include <string_view>

// Pieces of JSON, appended to a text.

namespace qn::gltf_export {

/// With quotes. `utf8` is well-formed.
void AppendText(std::string& out, std::string_view utf8);
void AppendInteger(std::string& out, std::int64_t number);
void AppendIndex(std::string& out, std::uint64_t number);
/// The shortest text that reads back as the same number, which is finite. The sign of -0 is kept.
void AppendNumber(std::string& out, double number);
/// The same, always with a fraction or an exponent.
void AppendReal(std::string& out, double number);
/// 16 numbers in brackets, row after row.
void AppendMatrix(std::string& out, const Matrix4<double>& matrix);
/// Numbers in brackets.
void AppendNumbers(std::string& out, const double* first, std::size_t count);

/// Puts commas between the members of one object or array.
class Comma {
public:
    /// Nothing the first time.
    void To(std::string& out) {
        if (!first_) out += ',';
        first_ = false;
    }
    /// `"key":` of the next member.
    void Key(std::string& out, std::string_view key) {
        To(out);
        out += '"', out += key, out += "\":";
    }

private:
    bool first_ = true;
};

}  // namespace qn::gltf_export
