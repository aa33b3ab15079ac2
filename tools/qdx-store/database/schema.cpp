// SPDX-License-Identifier: Apache-2.0
#include "schema.h"

namespace NVORNQDX20::NStore {

// Texts, classes, properties and objects are stored once, and are found by a digest of what makes
// them different. "since" and "until" are moments of documents; what still holds has the largest
// number as its end.
const std::vector<std::vector<std::string>>& Migrations() {
  static const std::vector<std::vector<std::string>> migrations = {
      {
          "CREATE TABLE string (id @ID, digest TEXT NOT NULL UNIQUE, value TEXT NOT NULL)",
          R"(CREATE TABLE reason (id @ID, digest TEXT NOT NULL UNIQUE, reason TEXT NOT NULL,
              is_error BIGINT NOT NULL))",
          R"(CREATE TABLE class (id @ID, digest TEXT NOT NULL UNIQUE, namespace TEXT NOT NULL,
              name TEXT NOT NULL))",
          R"(CREATE TABLE property (id @ID, digest TEXT NOT NULL UNIQUE, class BIGINT NOT NULL,
              name TEXT NOT NULL, type TEXT NOT NULL, secret TEXT NOT NULL, is_key BIGINT NOT
              NULL))",
          R"(CREATE TABLE object (id @ID, digest TEXT NOT NULL UNIQUE, class BIGINT NOT NULL,
              name TEXT, parts TEXT NOT NULL))",

          "CREATE TABLE host (id @ID, key TEXT NOT NULL UNIQUE, name TEXT NOT NULL)",
          R"(CREATE TABLE identity (id @ID, digest TEXT NOT NULL UNIQUE, uuid TEXT NOT NULL,
              machine_id TEXT NOT NULL, serial_number TEXT NOT NULL, manufacturer TEXT NOT NULL,
              name TEXT NOT NULL, host BIGINT NOT NULL REFERENCES host (id)))",
          "CREATE INDEX identity_uuid ON identity (uuid)",
          "CREATE INDEX identity_machine_id ON identity (machine_id)",
          "CREATE INDEX identity_serial_number ON identity (serial_number)",
          "CREATE INDEX identity_name ON identity (name)",
          "CREATE INDEX identity_host ON identity (host)",

          R"(CREATE TABLE document (id @ID, digest TEXT NOT NULL UNIQUE, host BIGINT NOT NULL
              REFERENCES host (id), identity BIGINT NOT NULL REFERENCES identity (id), moment
              BIGINT NOT NULL, sight BIGINT NOT NULL, name BIGINT NOT NULL, uuid BIGINT NOT
              NULL, machine_id BIGINT NOT NULL, serial_number BIGINT NOT NULL, manufacturer
              BIGINT NOT NULL, model BIGINT NOT NULL, tool_version BIGINT NOT NULL,
              parts_left_out BIGINT NOT NULL, has_all_permissions BIGINT NOT NULL, is_complete
              BIGINT NOT NULL, facts BIGINT NOT NULL, UNIQUE (host, moment)))",
          "CREATE INDEX document_identity ON document (identity)",
          "CREATE INDEX document_moment ON document (moment)",
          R"(CREATE TABLE problem (document BIGINT NOT NULL REFERENCES document (id), number
              BIGINT NOT NULL, kind TEXT NOT NULL, provider TEXT NOT NULL, namespace TEXT NOT
              NULL, operation TEXT NOT NULL, reason TEXT NOT NULL, PRIMARY KEY (document,
              number)) @CLUSTERED)",

          R"(CREATE TABLE fact (host BIGINT NOT NULL, object BIGINT NOT NULL, property BIGINT NOT
              NULL, since BIGINT NOT NULL, until BIGINT NOT NULL, value BIGINT NOT NULL, PRIMARY
              KEY (host, object, property, since)) @CLUSTERED)",
          R"(CREATE TABLE gap (host BIGINT NOT NULL, object BIGINT NOT NULL, property BIGINT NOT
              NULL, since BIGINT NOT NULL, until BIGINT NOT NULL, value BIGINT NOT NULL, PRIMARY
              KEY (host, object, property, since)) @CLUSTERED)",
          R"(CREATE TABLE reading (document BIGINT NOT NULL, object BIGINT NOT NULL, property
              BIGINT NOT NULL, value TEXT NOT NULL, PRIMARY KEY (document, object, property))
              @CLUSTERED)",
      },
      {
          // When the store got the document: hosts whose clocks are wrong stand out.
          "ALTER TABLE document ADD COLUMN added BIGINT",
      },
      {},  // views only
      {}   // views only
  };
  return migrations;
}

}  // namespace NVORNQDX20::NStore
