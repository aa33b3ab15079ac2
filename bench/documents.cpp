// SPDX-License-Identifier: Apache-2.0
// A CIM-XML document of instances with ten properties of mixed types, beside expat, zlib, and text
// put together by hand.
#include <qdxcimxml/document_reader.h>
#include <qdxcimxml/document_writer.h>

#include "support/class_builder.h"
#include "support/temp_dir.h"

#include <charconv>
#include <cstdio>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <expat.h>
#include <sys/mman.h>
#include <unistd.h>
#include <zlib.h>

#include "bare.h"
#include "operation.h"

namespace NBench {
namespace {

using namespace NVORNQDX20;

TNamespace MakeDisks(std::size_t count) {
  const TNamespace ns = MakeNamespace();
  AddClass(ns, "CIM_DiskDrive", {{"DeviceID", ""}, {"SystemName", ""}},
           {{"Enabled", false},
            {"Percent", static_cast<unsigned char>(0)},
            {"Port", static_cast<unsigned short>(0)},
            {"Errors", 0U},
            {"Temperature", 0},
            {"Size", 0UL},
            {"Load", 0.0},
            {"Installed", TCIMDateTime(2004, 3, 15, 14, 30, 0, 0, 60)}});
  const auto disks = ns->GetClass("CIM_DiskDrive", {});
  for (std::size_t i = 0; i < count; ++i) {
    const auto disk = disks->CreateInstance({});
    disk->SetPropertyValue("DeviceID", "disk" + std::to_string(i), {});
    disk->SetPropertyValue("SystemName", "server.example & others", {});
    disk->SetPropertyValue("Errors", static_cast<unsigned int>(i), {});
    disk->SetPropertyValue("Size", i * 512, {});
    disk->SetPropertyValue("Load", static_cast<double>(i) / 7.0, {});
    disk->Commit({});
  }
  return ns;
}

/// Is made once for the process.
const TNamespace& Disks(std::size_t count) {
  static const TNamespace ns = MakeDisks(count);
  return ns;
}

void WriteDisks(const std::string& file, std::size_t count) {
  NCIMXML::TDocumentWriter writer(file);
  writer.AddNamespace(*Disks(count));
  writer.Close();
}

/// Returns the descriptor of the document, a file in memory that stays open.
int DocumentFile(std::size_t count) {
  static const int file = [count] {
    const int created = ::memfd_create("bench", MFD_CLOEXEC);
    WriteDisks("/proc/self/fd/" + std::to_string(created), count);
    return created;
  }();
  return file;
}

const std::string& DocumentText(std::size_t count) {
  static const std::string text =
      ReadWholeFile("/proc/self/fd/" + std::to_string(DocumentFile(count)));
  return text;
}

TLoop Write(std::size_t count) {
  Disks(count);
  return Repeat([count] { WriteDisks("/dev/null", count); });
}

/// The writer compresses what has this end of the name.
TLoop WriteCompressed(std::size_t count) {
  Disks(count);
  const auto folder = std::make_shared<TTempDir>();
  const std::filesystem::path file = folder->Path() / "null.gz";
  std::filesystem::create_symlink("/dev/null", file);
  return Repeat([folder, file, count] { WriteDisks(file, count); });
}

TLoop Read(std::size_t count) {
  return Repeat([file = DocumentFile(count)] {
    ::lseek(file, 0, SEEK_SET);
    return NCIMXML::ReadDocument("bench", file);
  });
}

/// The parser with empty handlers.
TLoop ParseAlone(std::size_t count) {
  return Repeat([&text = DocumentText(count)] {
    const std::unique_ptr<XML_ParserStruct, void (*)(XML_Parser)> parser(XML_ParserCreate(nullptr),
                                                                         &XML_ParserFree);
    XML_SetElementHandler(
        parser.get(), [](void*, const XML_Char*, const XML_Char**) {},
        [](void*, const XML_Char*) {});
    XML_SetCharacterDataHandler(parser.get(), [](void*, const XML_Char*, int) {});
    return XML_Parse(parser.get(), text.data(), static_cast<int>(text.size()), XML_TRUE);
  });
}

struct TDisk {
  std::string fDevice;
  std::string fServer;
  bool fEnabled = false;
  unsigned int fPercent = 0;
  unsigned int fPort = 0;
  unsigned int fErrors = 0;
  int fTemperature = 0;
  unsigned long fSize = 0;
  double fLoad = 0;
  std::string fInstalled = "20040315143000.000000+060";
};

std::vector<TDisk> MakeRows(std::size_t count) {
  std::vector<TDisk> rows(count);
  for (std::size_t i = 0; i < count; ++i) {
    rows[i].fDevice = "disk" + std::to_string(i);
    rows[i].fServer = "server.example & others";
    rows[i].fErrors = static_cast<unsigned int>(i);
    rows[i].fSize = i * 512;
    rows[i].fLoad = static_cast<double>(i) / 7.0;
  }
  return rows;
}

void AppendText(std::string& all, std::string_view text) {
  for (const char c : text) {
    switch (c) {
      case '&':
        all += "&amp;";
        break;
      case '<':
        all += "&lt;";
        break;
      case '>':
        all += "&gt;";
        break;
      default:
        all += c;
    }
  }
}
void AppendText(std::string& all, bool value) { all += value ? "TRUE" : "FALSE"; }
template <typename T>
void AppendText(std::string& all, T number) {
  char text[32];
  all.append(text, std::to_chars(text, text + sizeof text, number).ptr);
}

template <typename T>
void AppendProperty(std::string& all, std::string_view name, std::string_view type,
                    const T& value) {
  all += "<PROPERTY NAME=\"";
  all += name;
  all += "\" TYPE=\"";
  all += type;
  all += "\"><VALUE>";
  AppendText(all, value);
  all += "</VALUE></PROPERTY>\n";
}

void AppendKey(std::string& all, std::string_view name, const std::string& value) {
  all += "<KEYBINDING NAME=\"";
  all += name;
  all += "\"><KEYVALUE VALUETYPE=\"string\" TYPE=\"string\">";
  AppendText(all, std::string_view(value));
  all += "</KEYVALUE></KEYBINDING>\n";
}

void AppendDisk(std::string& all, const TDisk& disk) {
  all +=
      "<VALUE.OBJECTWITHPATH>\n<INSTANCEPATH>\n<NAMESPACEPATH><HOST>localhost</HOST>"
      "<LOCALNAMESPACEPATH><NAMESPACE NAME=\"test\"/></LOCALNAMESPACEPATH></NAMESPACEPATH>\n"
      "<INSTANCENAME CLASSNAME=\"CIM_DiskDrive\">\n";
  AppendKey(all, "DeviceID", disk.fDevice);
  AppendKey(all, "SystemName", disk.fServer);
  all += "</INSTANCENAME>\n</INSTANCEPATH>\n<INSTANCE CLASSNAME=\"CIM_DiskDrive\">\n";
  AppendProperty(all, "DeviceID", "string", std::string_view(disk.fDevice));
  AppendProperty(all, "SystemName", "string", std::string_view(disk.fServer));
  AppendProperty(all, "Enabled", "boolean", disk.fEnabled);
  AppendProperty(all, "Percent", "uint8", disk.fPercent);
  AppendProperty(all, "Port", "uint16", disk.fPort);
  AppendProperty(all, "Errors", "uint32", disk.fErrors);
  AppendProperty(all, "Temperature", "sint32", disk.fTemperature);
  AppendProperty(all, "Size", "uint64", disk.fSize);
  AppendProperty(all, "Load", "real64", disk.fLoad);
  AppendProperty(all, "Installed", "datetime", std::string_view(disk.fInstalled));
  all += "</INSTANCE>\n</VALUE.OBJECTWITHPATH>\n";
}

/// zlib at its fastest level, into a buffer that is thrown away.
class TDeflater {
 public:
  TDeflater() { ::deflateInit(&fStream, 1); }
  ~TDeflater() { ::deflateEnd(&fStream); }
  TDeflater(const TDeflater&) = delete;
  TDeflater& operator=(const TDeflater&) = delete;

  void Add(std::string& text) {
    fStream.next_in = reinterpret_cast<Bytef*>(text.data());
    fStream.avail_in = static_cast<uInt>(text.size());
    do {
      fStream.next_out = fOut;
      fStream.avail_out = sizeof(fOut);
      ::deflate(&fStream, Z_NO_FLUSH);
    } while (fStream.avail_out == 0);
  }

 private:
  z_stream fStream{};
  Bytef fOut[1 << 16];
};

TLoop WriteByHand(std::size_t count, bool isCompressed) {
  return Repeat([rows = MakeRows(count), isCompressed] {
    const std::unique_ptr<std::FILE, int (*)(std::FILE*)> sink(std::fopen("/dev/null", "we"),
                                                               &std::fclose);
    TDeflater deflater;
    std::string text;
    for (const TDisk& disk : rows) {
      AppendDisk(text, disk);
      if (text.size() < 1 << 16) continue;
      if (isCompressed) deflater.Add(text);
      std::fwrite(text.data(), 1, text.size(), sink.get());
      text.clear();
    }
  });
}

}  // namespace

void WriteDocument(const std::string& file, std::size_t instances) { WriteDisks(file, instances); }

TOperations DocumentOperations(bool isCounted) {
  const std::size_t count = isCounted ? 1000 : 100000;
  TOperations all = {
      {"read CIM-XML", [count] { return Read(count); }, "expat alone",
       [count] { return ParseAlone(count); }, 1.5},
      {"write CIM-XML", [count] { return Write(count); }, "by hand",
       [count] { return WriteByHand(count, false); }, 2.14},
      {"write CIM-XML, .gz", [count] { return WriteCompressed(count); },
       "by hand, zlib at its fastest", [count] { return WriteByHand(count, true); }, 1.2}};
  for (TOperation& operation : all) {
    operation.fInstances = count;
    operation.fCountedRuns = 3;
  }
  return all;
}

}  // namespace NBench
