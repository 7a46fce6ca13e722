// loom hex convert IN OUT [--from KIND] [--to KIND] [--fill BYTE] [--address ADDR]
// loom hex info IN [--from KIND] [--address ADDR]
// KIND is bin, hex, srec, txt or lst; without it the file's extension tells.
#include <charconv>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "base/hexception.h"
#include "loadfile/load_file_formats.h"
#include "loom/command.h"

namespace loom {

namespace {

using regmill::LoadFileFormat;

struct HexOptions {
  std::vector<std::string> files;
  std::optional<LoadFileFormat> from;
  std::optional<LoadFileFormat> to;
  std::optional<uint8_t> fill;
  uint32_t address = 0;
};

// A number in decimal, or in hexadecimal behind "0x"; the whole word, within `limit`.
std::optional<uint32_t> numberArgument(const std::string& word, uint32_t limit) {
  bool hexadecimal = word.size() > 2 && word[0] == '0' && (word[1] == 'x' || word[1] == 'X');
  const char* begin = word.data() + (hexadecimal ? 2 : 0);
  const char* end = word.data() + word.size();
  uint64_t value = 0;
  auto [stop, error] = std::from_chars(begin, end, value, hexadecimal ? 16 : 10);
  if (begin == end || error != std::errc() || stop != end || value > limit) return std::nullopt;
  return static_cast<uint32_t>(value);
}

// Fills `options`, or gives the failure's text.
std::optional<std::string> readOptions(Arguments arguments, HexOptions& options) {
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::string& word = arguments[i];
    if (!word.starts_with("--")) {
      options.files.push_back(word);
      continue;
    }
    if (i + 1 == arguments.size()) return "option " + word + " needs a value";
    const std::string& value = arguments[++i];
    if (word == "--from" || word == "--to") {
      auto format = regmill::formatFromKeyword(value);
      if (!format) return "unknown format '" + value + "'; use bin, hex, srec, txt or lst";
      (word == "--from" ? options.from : options.to) = format;
    } else if (word == "--fill") {
      auto fill = numberArgument(value, 0xFF);
      if (!fill) return "--fill takes a byte value, not '" + value + "'";
      options.fill = static_cast<uint8_t>(*fill);
    } else if (word == "--address") {
      auto address = numberArgument(value, 0xFFFFFFFF);
      if (!address) return "--address takes a 32-bit address, not '" + value + "'";
      options.address = *address;
    } else {
      return "unknown option " + word;
    }
  }
  return std::nullopt;
}

std::optional<LoadFileFormat> formatOf(const std::optional<LoadFileFormat>& given, const std::string& path) {
  return given ? given : regmill::formatFromExtension(path);
}

// The library's text names the file when it could not open or write it; for a fault
// inside a file, the file's name goes in front.
int failIn(const std::string& path, const regmill::HException& failure) {
  if (failure.text().find(path) != std::string::npos) return fail(failure.text());
  return fail(path + ": " + failure.text());
}

int convert(const HexOptions& options) {
  if (options.files.size() != 2) return fail("hex convert takes an input and an output file");
  const std::string& input = options.files[0];
  const std::string& output = options.files[1];
  auto from = formatOf(options.from, input);
  auto to = formatOf(options.to, output);
  if (!from) return fail("cannot tell the format of " + input + "; give --from KIND");
  if (!to) return fail("cannot tell the format of " + output + "; give --to KIND");
  std::unique_ptr<regmill::StandardLoadFile> image;
  try {
    image = regmill::loadLoadFile(*from, input, options.address);
    // A binary file has no gaps: they are filled with the erased-flash value unless
    // the user chose another.
    if (options.fill || *to == LoadFileFormat::Binary) image->makeContiguous(options.fill.value_or(0xFF));
  } catch (const regmill::HException& failure) {
    return failIn(input, failure);
  }
  try {
    regmill::saveLoadFile(*image, *to, output);
  } catch (const regmill::HException& failure) {
    return failIn(output, failure);
  }
  return 0;
}

int info(const HexOptions& options) {
  if (options.files.size() != 1) return fail("hex info takes one file");
  if (options.to || options.fill) return fail("hex info takes no --to or --fill");
  const std::string& input = options.files[0];
  auto from = formatOf(options.from, input);
  if (!from) return fail("cannot tell the format of " + input + "; give --from KIND");
  try {
    auto image = regmill::loadLoadFile(*from, input, options.address);
    std::fputs(regmill::describeLoadFile(*image).c_str(), stdout);
  } catch (const regmill::HException& failure) {
    return failIn(input, failure);
  }
  return 0;
}

}  // namespace

int runHex(Arguments arguments) {
  if (arguments.empty() || (arguments[0] != "convert" && arguments[0] != "info"))
    return fail("hex needs 'convert' or 'info'; run 'loom help hex'");
  HexOptions options;
  if (auto problem = readOptions(arguments.subspan(1), options)) return fail(*problem);
  return arguments[0] == "convert" ? convert(options) : info(options);
}

}  // namespace loom
