// SPDX-License-Identifier: Apache-2.0
// Object paths, beside hand-written code that keeps the keys in a std::map.
#include <qdxcore/reference.h>

#include "support/class_builder.h"

#include <map>
#include <memory>
#include <string>
#include <utility>

#include "operation.h"

namespace NBench {
namespace {

using namespace NVORNQDX20;

const std::string kPath = "CIM_DiskDrive.DeviceID=\"sda\",Number=\"7\"";
const std::string kNested = "CIM_Contains.From=\"" + kPath + "\",To=\"" + kPath + "\"";

TNamespace MakeDisks() {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_DiskDrive", {{"DeviceID", ""}, {"Number", 0U}});
  AddInstance(ns, "CIM_DiskDrive", {{"DeviceID", "sda"}, {"Number", 7U}});
  const TCIMValue disk = NullReference(ns, "CIM_DiskDrive");
  AddClass(ns, "CIM_Contains", {{"From", disk}, {"To", disk}}, {}, nullptr, true);
  return ns;
}

/// A path in memory: a key is a text, or the path that is nested in it.
struct TPath {
  struct TKey {
    std::string fText;
    std::unique_ptr<TPath> fPath;
    bool operator==(const TKey& other) const {
      if (!fPath || !other.fPath) return fText == other.fText;
      return *fPath == *other.fPath;
    }
  };

  bool operator==(const TPath& other) const {
    return fClass == other.fClass && fKeys == other.fKeys;
  }

  std::string fClass;
  std::map<std::string, TKey> fKeys;
};

/// Reads a path up to its end, or to the quote that closes it.
std::unique_ptr<TPath> ReadByHand(const std::string& text, std::size_t& at) {
  auto path = std::make_unique<TPath>();
  const std::size_t dot = text.find('.', at);
  path->fClass.assign(text, at, dot - at);
  at = dot;
  while (at < text.size() && text[at] != '"') {
    const std::size_t equals = text.find('=', ++at);
    TPath::TKey& key = path->fKeys[text.substr(at, equals - at)];
    at = equals + 2;
    if (text.compare(at, 4, "CIM_") == 0) {
      key.fPath = ReadByHand(text, at);
    } else {
      for (; text[at] != '"'; ++at) {
        if (text[at] == '\\') ++at;
        key.fText += text[at];
      }
    }
    ++at;
  }
  return path;
}

std::unique_ptr<TPath> ReadByHand(const std::string& text) {
  std::size_t at = 0;
  return ReadByHand(text, at);
}

void WriteByHand(const TPath& path, std::string& text) {
  text += path.fClass;
  char before = '.';
  for (const auto& [name, key] : path.fKeys) {
    text += std::exchange(before, ',');
    text += name;
    text += "=\"";
    if (key.fPath) {
      WriteByHand(*key.fPath, text);
    } else {
      for (const char c : key.fText) {
        if (c == '"' || c == '\\') text += '\\';
        text += c;
      }
    }
    text += '"';
  }
}

TPrepare Parse(const std::string& path) {
  return [path] {
    return Repeat([ns = MakeDisks(), path] { return TCIMReference(ns, path, TOptionsMap()); });
  };
}

TPrepare ParseByHand(const std::string& path) {
  return [path] { return Repeat([path] { return ReadByHand(path); }); };
}

TPrepare Format(const std::string& path) {
  return [path] {
    return Repeat(
        [reference = TCIMReference(MakeDisks(), path, {})] { return reference.GetPath(); });
  };
}

TPrepare FormatByHand(const std::string& path) {
  return [path] {
    return Repeat([read = std::shared_ptr<TPath>(ReadByHand(path))] {
      std::string text;
      WriteByHand(*read, text);
      return text;
    });
  };
}

TLoop Equality() {
  const TNamespace ns = MakeDisks();
  return Repeat([left = TCIMReference(ns, kPath, {}), right = TCIMReference(ns, kPath, {})] {
    return left == right;
  });
}

TLoop EqualityByHand() {
  return Repeat([left = std::shared_ptr<TPath>(ReadByHand(kPath)),
                 right = std::shared_ptr<TPath>(ReadByHand(kPath))] { return *left == *right; });
}

}  // namespace

TOperations PathOperations() {
  return {{"path of two keys: parse", Parse(kPath), "by hand", ParseByHand(kPath), 2.09},
          {"path of two keys: format", Format(kPath), "by hand", FormatByHand(kPath), 1.45},
          {"path of two keys: equal", Equality, "by hand", EqualityByHand, 4.8},
          {"nested path: parse", Parse(kNested), "by hand", ParseByHand(kNested), 3.4},
          {"nested path: format", Format(kNested), "by hand", FormatByHand(kNested), 1.76}};
}

}  // namespace NBench
