// SPDX-License-Identifier: Apache-2.0
// The views of a store: what people and other programs query.
#include "schema.h"

namespace NVORNQDX20::NStore {
namespace {

/// The end of a span that still holds.
const std::string kOpen = "9223372036854775807";

/// The columns of all views of what hosts have.
const std::string kHostColumns = "h.name AS host, h.id AS host_id";

std::string Until(const std::string& span) {
  return "CASE WHEN " + span + ".until = " + kOpen + " THEN NULL ELSE @TIME(" + span +
         ".until) END";
}

/// The last text in a column of the documents of the host "h" that is not empty.
std::string LastOf(const std::string& column) {
  return "COALESCE((SELECT s.value FROM document AS x JOIN string AS s ON s.id = x." + column +
         " WHERE x.host = h.id AND s.value <> '' ORDER BY x.moment DESC LIMIT 1), '')";
}

std::string HostsQuery() {
  return "SELECT " + kHostColumns +
         ", (SELECT MAX(i.uuid) FROM identity AS i WHERE i.host = h.id) AS uuid, " +
         LastOf("machine_id") + " AS machine_id, " + LastOf("serial_number") +
         " AS serial_number, " + LastOf("manufacturer") + " AS manufacturer, " + LastOf("model") +
         " AS model,"
         " (SELECT @TIME(MIN(x.moment)) FROM document AS x WHERE x.host = h.id) AS first_seen,"
         " @TIME(d.moment) AS last_seen,"
         " (SELECT COUNT(*) FROM document AS x WHERE x.host = h.id) AS documents,"
         " d.has_all_permissions, d.is_complete, l.value AS parts_left_out,"
         " (SELECT COUNT(*) FROM problem AS p WHERE p.document = d.id) AS problems"
         " FROM host AS h JOIN document AS d ON d.host = h.id AND d.moment ="
         " (SELECT MAX(x.moment) FROM document AS x WHERE x.host = h.id)"
         " JOIN string AS l ON l.id = d.parts_left_out";
}

const char* const kNamesOfKey =
    "c.namespace, c.name AS class, o.name AS object, p.name AS property";
/// "k" has an object and a property.
const char* const kJoinsOfKey =
    " JOIN object AS o ON o.id = k.object JOIN class AS c ON c.id = o.class"
    " JOIN property AS p ON p.id = k.property";

std::string FactsQuery() {
  return "SELECT " + kHostColumns + ", " + kNamesOfKey +
         ", p.type, s.value, @TIME(k.since) AS valid_from, " + Until("k") +
         " AS valid_to FROM fact AS k JOIN host AS h ON h.id = k.host" + kJoinsOfKey +
         " JOIN string AS s ON s.id = k.value";
}

const std::string kMissingColumns = "SELECT " + kHostColumns + ", " + kNamesOfKey +
                                    ", r.reason, r.is_error, @TIME(k.since) AS valid_from";
const std::string kMissingTables = " FROM gap AS k JOIN host AS h ON h.id = k.host" +
                                   std::string(kJoinsOfKey) + " JOIN reason AS r ON r.id = k.value";

std::string MissingQuery() {
  return kMissingColumns + kMissingTables + " WHERE k.until = " + kOpen;
}

std::string MissingHistoryQuery() {
  return kMissingColumns + ", " + Until("k") + " AS valid_to" + kMissingTables;
}

std::string ReadingsQuery() {
  return "SELECT " + kHostColumns + ", @TIME(d.moment) AS time, " + kNamesOfKey +
         ", p.type, k.value FROM reading AS k JOIN document AS d ON d.id = k.document"
         " JOIN host AS h ON h.id = d.host" +
         kJoinsOfKey;
}

/// What differs from the document before: a value that came in the place of another one or of
/// none, and one that ended without another one. Not what the first document shows.
std::string ChangesQuery() {
  const std::string select = "SELECT " + kHostColumns + ", ";
  return select + "@TIME(k.since) AS time, " + kNamesOfKey +
         ", was.value AS old_value, s.value AS new_value FROM fact AS k"
         " JOIN host AS h ON h.id = k.host" +
         kJoinsOfKey +
         " JOIN string AS s ON s.id = k.value"
         " LEFT JOIN fact AS b ON b.host = k.host AND b.object = k.object"
         " AND b.property = k.property AND b.until = k.since"
         " LEFT JOIN string AS was ON was.id = b.value"
         " WHERE k.since > (SELECT MIN(d.moment) FROM document AS d WHERE d.host = k.host)"
         " UNION ALL " +
         select + "@TIME(k.until), " + kNamesOfKey +
         ", s.value, NULL FROM fact AS k JOIN host AS h ON h.id = k.host" + kJoinsOfKey +
         " JOIN string AS s ON s.id = k.value WHERE k.until < " + kOpen +
         " AND NOT EXISTS (SELECT 1 FROM fact AS b WHERE b.host = k.host"
         " AND b.object = k.object AND b.property = k.property AND b.since = k.until)";
}

std::string DocumentsQuery() {
  return "SELECT " + kHostColumns +
         ", @TIME(d.moment) AS time, d.digest, t.value AS tool_version, d.has_all_permissions,"
         " d.is_complete, l.value AS parts_left_out, d.facts,"
         " (SELECT COUNT(*) FROM problem AS p WHERE p.document = d.id) AS problems,"
         " CASE WHEN d.added IS NULL THEN NULL ELSE @TIME(d.added) END AS added"
         " FROM document AS d JOIN host AS h ON h.id = d.host"
         " JOIN string AS t ON t.id = d.tool_version JOIN string AS l ON l.id = d.parts_left_out";
}

std::string ProblemsQuery() {
  return "SELECT " + kHostColumns +
         ", @TIME(d.moment) AS time, p.kind, p.provider, p.namespace, p.operation, p.reason"
         " FROM problem AS p JOIN document AS d ON d.id = p.document"
         " JOIN host AS h ON h.id = d.host";
}

std::string ClonesQuery() {
  return "SELECT i.machine_id, " + kHostColumns +
         " FROM identity AS i JOIN host AS h ON h.id = i.host WHERE i.machine_id <> ''"
         " AND EXISTS (SELECT 1 FROM identity AS x WHERE x.machine_id = i.machine_id"
         " AND x.host <> i.host) GROUP BY i.machine_id, h.id, h.name";
}

/// A column of a view of devices: one property.
struct TColumn {
  const char* fName;
  const char* fProperty;
  bool fIsNumber = false;
};

struct TDeviceView {
  const char* fName;
  const char* fObject;   ///< The column with the object.
  const char* fClasses;  ///< A list for SQL.
  std::vector<TColumn> fColumns;
};

/// One row for each object that the hosts have now.
std::string DeviceQuery(const TDeviceView& view) {
  std::string query = "SELECT " + kHostColumns + ", o.name AS " + view.fObject;
  for (const TColumn& column : view.fColumns) {
    // Numbers as such, also the largest ones: PostgreSQL has no unsigned type. A text that is no
    // number would end the query for all hosts, and what a property is called is up to documents.
    const std::string value =
        column.fIsNumber ? "CAST(s.value AS NUMERIC)" : std::string("s.value");
    const std::string type = column.fIsNumber ? " AND LENGTH(s.value) BETWEEN 1 AND 20"
                                                " AND LTRIM(s.value, '0123456789') = ''"
                                              : "";
    query += std::string(", MAX(CASE WHEN p.name = '") + column.fProperty + "'" + type + " THEN " +
             value + " END) AS " + column.fName;
  }
  return query + " FROM fact AS k JOIN host AS h ON h.id = k.host" + kJoinsOfKey +
         " JOIN string AS s ON s.id = k.value WHERE c.name IN (" + view.fClasses +
         ") AND k.until = " + kOpen + " GROUP BY h.id, h.name, o.id, o.name";
}

const std::vector<TDeviceView>& DeviceViews() {
  static const std::vector<TDeviceView> views = {
      {"disks",
       "device",
       "'VORNSG_DiskDrive'",
       {{"model", "Model"},
        {"manufacturer", "Manufacturer"},
        {"serial_number", "SerialNumber"},
        {"firmware", "FirmwareRevision"},
        {"bytes", "Size", true},
        {"transport", "Transport"},
        {"rotational", "Rotational"},
        {"state", "State"}}},
      {"memory_modules",
       "module",
       "'VORNSG_PhysicalMemory'",
       {{"slot", "DeviceLocator"},
        {"manufacturer", "Manufacturer"},
        {"part_number", "PartNumber"},
        {"serial_number", "SerialNumber"},
        {"bytes", "Capacity", true},
        {"type", "MemoryTypeDescription"},
        {"megahertz", "ConfiguredMemoryClockSpeed", true}}},
      {"network_ports",
       "port",
       "'VORNSG_NetworkPort', 'VORNSG_EthernetPort', 'VORNSG_FCPort', 'VORNSG_IBPort',"
       " 'VORNSG_WiFiPort'",
       {{"link_state", "LinkState"},
        {"bits_per_second", "Speed", true},
        {"permanent_address", "PermanentAddress"},
        {"current_address", "CurrentAddress"},
        {"driver", "Driver"},
        {"driver_version", "DriverVersion"},
        {"mtu", "ActiveMaximumTransmissionUnit", true}}},
      {"processors",
       "processor",
       "'VORNSG_Processor'",
       {{"model", "Name"},
        {"manufacturer", "Manufacturer"},
        {"cores", "NumberOfCores", true},
        {"threads", "NumberOfHardwareThreads", true},
        {"max_megahertz", "MaxClockSpeed", true},
        {"microcode", "Microcode"},
        {"socket", "SocketDesignation"}}},
      {"file_systems",
       "mounted_at",
       "'VORNSG_FileSystem'",
       {{"device", "SourceDevice"},
        {"type", "FileSystemType"},
        {"bytes", "FileSystemSize", true},
        {"read_only", "ReadOnly"},
        {"options", "MountOptions"}}},
      {"firmware",
       "element",
       "'VORNSG_BIOSElement'",
       {{"name", "Name"},
        {"manufacturer", "Manufacturer"},
        {"version", "Version"},
        {"released", "ReleaseDate"},
        {"uefi", "UEFI"}}},
      {"operating_systems",
       "system",
       "'VORNSG_OperatingSystem'",
       {{"distribution", "Name"},
        {"version", "Version"},
        {"caption", "Caption"},
        {"kernel", "KernelRelease"},
        {"architecture", "Architecture"},
        {"booted", "LastBootUpTime"},
        {"virtual_machine", "VirtualMachine"}}},
  };
  return views;
}

}  // namespace

std::vector<TView> Views() {
  std::vector<TView> views = {{"hosts", HostsQuery()},
                              {"facts", FactsQuery()},
                              {"missing", MissingQuery()},
                              {"readings", ReadingsQuery()},
                              {"changes", ChangesQuery()},
                              {"documents", DocumentsQuery()},
                              {"problems", ProblemsQuery()},
                              {"missing_history", MissingHistoryQuery()},
                              {"cloned_machine_ids", ClonesQuery()}};
  for (const TDeviceView& view : DeviceViews()) {
    views.push_back({view.fName, DeviceQuery(view)});
  }
  return views;
}

}  // namespace NVORNQDX20::NStore
