-- The database account the component runs as: exactly the privileges its methods need on the tables
-- of schema/tovrand.sql, and nothing else. Load it as an administrator into the database that holds
-- the tables (MariaDB 10.3 or later), with the account's password (and, if wanted, its name and host)
-- set first:
--
--     (echo "SET @tovrand_password='...';"; cat schema/grants.sql) | mariadb erp
--     (echo "SET @tovrand_user='erp_app', @tovrand_host='10.1.%', @tovrand_password='...';"
--      cat schema/grants.sql) | mariadb erp
--
-- @tovrand_user defaults to tovrand_app and @tovrand_host to '%'. The account is created when it does
-- not exist, its password is set, and every privilege it held before is taken away, so that it holds
-- exactly the grants below afterwards (run the file again after reloading the schema). The account is
-- the component's alone: a site with several databases gives each its own account.
--
-- What the component does with each table, and so what the account may do:
--   reads only     t_wstockqtyi, t_boutmakei, t_cpurh, t_cpuri, t_ebom, t_ebomcheck, t_eitem
--   reads, adds and changes rows
--                  t_porder, t_porderchk, t_pmrph (its own production orders, reviews and plans),
--                  t_tovrand_lock (the lock row of serialized number allocation)
--   also deletes   t_pmrpi (a released plan's lines) and t_wstockqtys (their reservations): the only
--                  two tables it deletes from
--   changes only the columns it writes, in the tables of the sales and warehouse modules
--                  t_borderh.F_Flags, t_borderi.F_ProdNo and F_Status (allocation and release),
--                  t_wstockqtyh.F_ItemNo and F_NoPoStockQty (reservations; it also adds the summary
--                  row of a material that has none)
-- No privilege on the database as a whole, none to create, alter or drop anything, none on other
-- databases, and no GRANT OPTION. The free SQL the callers of QueryByStrSql, QureyDatabase and
-- QueryPMrphRecordset pass therefore runs with these privileges too.
--
-- Each statement is built from the variables with QUOTE(), so that a name or password holding a quote
-- cannot turn into SQL of its own.

SET @tovrand_user = IFNULL(@tovrand_user, 'tovrand_app');
SET @tovrand_host = IFNULL(@tovrand_host, '%');
SET @tovrand_account = CONCAT(QUOTE(@tovrand_user), '@', QUOTE(@tovrand_host));

-- Without a database selected the table names below would name nothing.
SET @tovrand_sql = IF(DATABASE() IS NULL,
  'SIGNAL SQLSTATE ''45000'' SET MESSAGE_TEXT = ''grants.sql: select the database that holds the tables first (mariadb DBNAME ...)''',
  'DO 0');
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = IF(@tovrand_password IS NULL OR @tovrand_password = '',
  'SIGNAL SQLSTATE ''45000'' SET MESSAGE_TEXT = ''grants.sql: set @tovrand_password to the account''''s password first''',
  CONCAT('CREATE USER IF NOT EXISTS ', @tovrand_account, ' IDENTIFIED BY ', QUOTE(@tovrand_password)));
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('ALTER USER ', @tovrand_account, ' IDENTIFIED BY ', QUOTE(@tovrand_password));
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('REVOKE ALL PRIVILEGES, GRANT OPTION FROM ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

-- One grant per table, in the order of schema/tovrand.sql.
SET @tovrand_sql = CONCAT('GRANT SELECT, INSERT, UPDATE ON t_porder TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, INSERT, UPDATE ON t_porderchk TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, INSERT, UPDATE ON t_pmrph TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, INSERT, UPDATE, DELETE ON t_pmrpi TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, INSERT, UPDATE, DELETE ON t_wstockqtys TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, INSERT (F_ItemNo, F_NoPoStockQty), UPDATE (F_ItemNo, F_NoPoStockQty) ',
                          'ON t_wstockqtyh TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT ON t_wstockqtyi TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, UPDATE (F_Flags) ON t_borderh TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, UPDATE (F_ProdNo, F_Status) ON t_borderi TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT ON t_boutmakei TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT ON t_cpurh TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT ON t_cpuri TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT ON t_ebom TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT ON t_ebomcheck TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT ON t_eitem TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

SET @tovrand_sql = CONCAT('GRANT SELECT, INSERT, UPDATE ON t_tovrand_lock TO ', @tovrand_account);
PREPARE tovrand_statement FROM @tovrand_sql;
EXECUTE tovrand_statement;

DEALLOCATE PREPARE tovrand_statement;
-- The password stays in no session variable after the file has run.
SET @tovrand_password = NULL, @tovrand_sql = NULL;
