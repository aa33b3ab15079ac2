-- SPDX-License-Identifier: Apache-2.0
-- Splits the facts of a store of qdx-store into eight partitions by host:
--   psql -f partition.sql postgresql://...
-- All of it happens, or nothing. Needs twice the space of the table for a while. Adding waits until it is done.
\set ON_ERROR_STOP on
BEGIN;
LOCK TABLE fact;
DO $$ BEGIN
  IF (SELECT relkind FROM pg_class WHERE oid = 'fact'::regclass) <> 'r' THEN
    RAISE EXCEPTION 'the facts are in partitions already';
  END IF;
END $$;
ALTER TABLE fact RENAME TO fact_before;
ALTER INDEX fact_pkey RENAME TO fact_before_pkey;
CREATE TABLE fact (LIKE fact_before INCLUDING ALL) PARTITION BY HASH (host);
SELECT format('CREATE TABLE fact_%s PARTITION OF fact FOR VALUES WITH (MODULUS 8, REMAINDER %s)', number, number)
  FROM generate_series(0, 7) AS number \gexec
-- Who may read the table goes on reading it.
SELECT format('GRANT %s ON fact TO %s', privilege_type,
              CASE grantee WHEN 0 THEN 'PUBLIC' ELSE quote_ident(pg_get_userbyid(grantee)) END)
  FROM pg_class, aclexplode(relacl) WHERE oid = 'fact_before'::regclass \gexec
INSERT INTO fact SELECT * FROM fact_before;
-- Views follow a table that is renamed. One that uses another is made again with it.
SELECT format('CREATE OR REPLACE VIEW %I AS %s', viewname,
              regexp_replace(definition, '\mfact_before\M', 'fact', 'g'))
  FROM pg_views WHERE schemaname = current_schema AND definition ~ '\mfact_before\M' \gexec
-- Refused if anything still uses it.
DROP TABLE fact_before;
COMMIT;
ANALYZE fact;
