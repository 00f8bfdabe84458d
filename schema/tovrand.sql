-- Tovrand database schema: every table the production module's data-access component reads or
-- writes, for MariaDB 10.11 / MySQL.
--
-- Load it into an empty (or an earlier Tovrand) database chosen by the loader:
--     mariadb DBNAME < schema/tovrand.sql
-- The file creates no database and selects none. Every table is dropped and created again, so a
-- reload gives clean, empty tables (sample data: schema/sample.sql).
--
-- The server MUST run with lower_case_table_names=1: the component addresses the same table as
-- t_porderchk, T_POrderChk and t_POrderChk, so the tables are created with lower-case names and
-- only a server that folds table names to lower case finds them under every spelling. Column
-- names never depend on case.
--
-- Types follow the component's interface: double -> DOUBLE (production numbers and sales order
-- numbers too), 16-bit integer -> SMALLINT, string -> VARCHAR, date -> DATETIME. Columns are
-- nullable unless they are keys: the component reads NULL through a default per column, and
-- several of its computations rely on NULL meaning "nothing yet". The exception is the review
-- table t_porderchk (see there). No foreign keys: the component writes review rows before the
-- production order exists and never deletes in dependency order.

SET NAMES utf8mb4;

DROP TABLE IF EXISTS t_porder;
DROP TABLE IF EXISTS t_porderchk;
DROP TABLE IF EXISTS t_pmrph;
DROP TABLE IF EXISTS t_pmrpi;
DROP TABLE IF EXISTS t_wstockqtys;
DROP TABLE IF EXISTS t_wstockqtyh;
DROP TABLE IF EXISTS t_wstockqtyi;
DROP TABLE IF EXISTS t_borderh;
DROP TABLE IF EXISTS t_borderi;
DROP TABLE IF EXISTS t_boutmakei;
DROP TABLE IF EXISTS t_cpurh;
DROP TABLE IF EXISTS t_cpuri;
DROP TABLE IF EXISTS t_ebom;
DROP TABLE IF EXISTS t_ebomcheck;
DROP TABLE IF EXISTS t_eitem;
DROP TABLE IF EXISTS t_tovrand_lock;

-- Production orders, one per production number; F_OrderMode '外发加工' marks outsourced
-- processing. The quantities and dates that clsDataPOrder.AddRecord does not write stay NULL,
-- which UpdateOrderOutNo's ifnull(F_Prodqty,0) and every reader treat as 0.
CREATE TABLE t_porder (
  F_ProdNo      DOUBLE       NOT NULL,
  F_OrderMode   VARCHAR(20)  NULL,
  F_OrderNo     DOUBLE       NULL,
  F_OrderOutNo  DOUBLE       NULL,
  F_ItemNo      VARCHAR(30)  NULL,
  F_CustNo      VARCHAR(20)  NULL,
  F_COrderNo    VARCHAR(30)  NULL,
  F_InQty       DOUBLE       NULL,
  F_InDate      DATETIME     NULL,
  F_OutQty      DOUBLE       NULL,
  F_OutDate     DATETIME     NULL,
  F_OutBkQty    DOUBLE       NULL,
  F_BalQty      DOUBLE       NULL,
  F_OrdQty      DOUBLE       NULL,
  F_DeliverDate DATETIME     NULL,
  F_ProdQty     DOUBLE       NULL,
  F_ProdDate    DATETIME     NULL,
  F_Status      SMALLINT     NULL,
  F_SalerID     VARCHAR(20)  NULL,
  F_WoNo        DOUBLE       NULL,
  PRIMARY KEY (F_ProdNo),
  KEY ix_porder_custno (F_CustNo),
  KEY ix_porder_mode_status (F_OrderMode, F_Status),
  KEY ix_porder_status_deliver (F_Status, F_DeliverDate),
  KEY ix_porder_deliverdate (F_DeliverDate)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Review of a production order by seven departments; the row is created when the production
-- number is allocated, so its primary key is what turns two clients allocating the same number
-- at once into a duplicate-key error instead of two orders under one number.
-- The allocation writes only the first eight columns. Every other numeric and date column that
-- the review load reads with a default that cannot become a number or date gets a column default
-- here, so a freshly allocated review loads; the default is the value a NULL would read as where
-- that is a number (F_BStradCon 2, F_MKDate 0), else 0, and for dates 1899-12-30, the zero date
-- of the client programs (it prints as "0:00:00"). These columns stay nullable: a NULL put there
-- by hand must still make the review load fail. The five flag columns F_EGAdmit, F_EGModel,
-- F_PUprovider, F_QCStd and F_Status default to NULL, which the load reads as 2 (not yet decided).
CREATE TABLE t_porderchk (
  F_ProdNo      DOUBLE       NOT NULL,
  F_OrderNo     DOUBLE       NULL DEFAULT 0,
  F_ItemNo      VARCHAR(30)  NULL,
  F_CustNo      VARCHAR(20)  NULL,
  F_CorderNo    VARCHAR(30)  NULL,
  F_OrderCount  DOUBLE       NULL DEFAULT 0,
  F_DeliverDate DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_CItemNo     VARCHAR(30)  NULL,
  F_BStradCon   SMALLINT     NULL DEFAULT 2,
  F_BSNote      VARCHAR(255) NULL,
  F_BSAlertNote VARCHAR(255) NULL,
  F_BSChecker   VARCHAR(20)  NULL,
  F_BSCheckTime DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_EGAdmit     SMALLINT     NULL DEFAULT NULL,
  F_EGModel     SMALLINT     NULL DEFAULT NULL,
  F_EGNote      VARCHAR(255) NULL,
  F_EGChecker   VARCHAR(20)  NULL,
  F_EGCheckTime DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_WIFill      DOUBLE       NULL DEFAULT 0,
  F_WIEndtime   DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_WPStock     DOUBLE       NULL DEFAULT 0,
  F_WPEndTime   DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_WINote      VARCHAR(255) NULL,
  F_WIChecker   VARCHAR(20)  NULL,
  F_WIChecktime DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_PUprovider  SMALLINT     NULL DEFAULT NULL,
  F_PUNote      VARCHAR(255) NULL,
  F_PUChecker   VARCHAR(20)  NULL,
  F_PUCheckTime DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_QCStd       SMALLINT     NULL DEFAULT NULL,
  F_QCNote      VARCHAR(255) NULL,
  F_QChecker    VARCHAR(20)  NULL,
  F_QCheckTime  DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_MKDate      SMALLINT     NULL DEFAULT 0,
  F_MKNote      VARCHAR(255) NULL,
  F_MKChecker   VARCHAR(20)  NULL,
  F_MKCheckTime DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_Way         VARCHAR(30)  NULL,
  F_CSNote      VARCHAR(255) NULL,
  F_CSChecker   VARCHAR(20)  NULL,
  F_CSCheckTime DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_AlerTime    DATETIME     NULL DEFAULT '1899-12-30 00:00:00',
  F_Status      SMALLINT     NULL DEFAULT NULL,
  PRIMARY KEY (F_ProdNo),
  KEY ix_porderchk_orderno (F_OrderNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Material planning header: one per production order (the planned product and its figures).
-- F_PlanPurQty NULL means no purchase planned yet and reads as 0.
CREATE TABLE t_pmrph (
  F_ProdNo      DOUBLE       NOT NULL,
  F_ItemNo      VARCHAR(30)  NULL,
  F_OrderQty    DOUBLE       NULL,
  F_SafeQty     DOUBLE       NULL,
  F_NeedQty     DOUBLE       NULL,
  F_PlanPurQty  DOUBLE       NULL,
  F_Status      SMALLINT     NULL,
  PRIMARY KEY (F_ProdNo),
  KEY ix_pmrph_planpurqty (F_PlanPurQty),
  KEY ix_pmrph_status (F_Status),
  KEY ix_pmrph_itemno (F_ItemNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Material planning lines: one per production order and material of its bill of material.
-- Lines are keyed by an id so that a line whose material is NULL can exist (releasing its
-- reservations then looks for material "0"); the unique key still refuses a second line for the
-- same production order and material, and leads the look-ups by production number. Edits through a
-- recordset (clsDataPMrpi.AddRecord, UpdateRecord, UpdatePMrpiStatus) find their row by F_ID.
-- F_Status stays NULL on a line written one by one (clsDataPMrpi.AddRecord never sets it); the
-- purchasing queries read it through IFNull(F_Status,0).
CREATE TABLE t_pmrpi (
  F_ID          INT          NOT NULL AUTO_INCREMENT,
  F_ProdNo      DOUBLE       NOT NULL,
  F_ItemNo      VARCHAR(30)  NULL,
  F_Dosage      DOUBLE       NULL,
  F_Waste       DOUBLE       NULL,
  F_SafeQty     DOUBLE       NULL,
  F_RequestQty  DOUBLE       NULL,
  F_LeadTime    SMALLINT     NULL,
  F_Status      SMALLINT     NULL,
  PRIMARY KEY (F_ID),
  UNIQUE KEY ux_pmrpi_prodno_itemno (F_ProdNo, F_ItemNo),
  KEY ix_pmrpi_requestqty (F_RequestQty),
  KEY ix_pmrpi_status (F_Status),
  KEY ix_pmrpi_itemno (F_ItemNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Stock reserved by planning for one production order and material.
CREATE TABLE t_wstockqtys (
  F_ID          INT          NOT NULL AUTO_INCREMENT,
  F_ProdNo      DOUBLE       NULL,
  F_ItemNo      VARCHAR(30)  NULL,
  F_ReduceQty   DOUBLE       NULL,
  PRIMARY KEY (F_ID),
  KEY ix_wstockqtys_prodno_itemno (F_ProdNo, F_ItemNo),
  KEY ix_wstockqtys_itemno (F_ItemNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Stock summary per material: safety stock and the stock not yet committed to any production
-- order (lowered by reservations).
CREATE TABLE t_wstockqtyh (
  F_ItemNo       VARCHAR(30) NOT NULL,
  F_SafeQty      DOUBLE      NULL,
  F_NoPoStockQty DOUBLE      NULL,
  PRIMARY KEY (F_ItemNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Stock on hand per material and warehouse location; planning sums F_StockQty over all lines.
CREATE TABLE t_wstockqtyi (
  F_ID          INT          NOT NULL AUTO_INCREMENT,
  F_ItemNo      VARCHAR(30)  NULL,
  F_WhNo        VARCHAR(20)  NULL,
  F_StockQty    DOUBLE       NULL,
  PRIMARY KEY (F_ID),
  KEY ix_wstockqtyi_itemno (F_ItemNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Sales order headers; F_Flags = 1 once production numbers were allocated for the order.
CREATE TABLE t_borderh (
  F_OrderNo     DOUBLE       NOT NULL,
  F_OrderDate   DATETIME     NULL,
  F_CustNo      VARCHAR(20)  NULL,
  F_CorderNo    VARCHAR(30)  NULL,
  F_SalerID     VARCHAR(20)  NULL,
  F_Flags       SMALLINT     NULL,
  F_Note        VARCHAR(255) NULL,
  PRIMARY KEY (F_OrderNo),
  KEY ix_borderh_custno (F_CustNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Sales order lines; F_ProdNo is the production number allocated for the line, F_BkQty the
-- booked quantity added to the requirement, F_Status 2 once the production order is released.
CREATE TABLE t_borderi (
  F_ID          INT          NOT NULL AUTO_INCREMENT,
  F_OrderNo     DOUBLE       NULL,
  F_No          VARCHAR(10)  NULL,
  F_ItemNo      VARCHAR(30)  NULL,
  F_CItemNo     VARCHAR(30)  NULL,
  F_OrderQty    DOUBLE       NULL,
  F_DeliverDate DATETIME     NULL,
  F_BkQty       DOUBLE       NULL,
  F_ProdNo      DOUBLE       NULL,
  F_Status      SMALLINT     NULL,
  PRIMARY KEY (F_ID),
  KEY ix_borderi_orderno (F_OrderNo, F_ItemNo, F_No),
  KEY ix_borderi_prodno (F_ProdNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Outsourcing order lines per production order; F_ordoutqty is the quantity given out.
CREATE TABLE t_boutmakei (
  F_ID          INT          NOT NULL AUTO_INCREMENT,
  F_OrderOutNo  DOUBLE       NULL,
  F_No          VARCHAR(10)  NULL,
  F_ProdNo      DOUBLE       NULL,
  F_ItemNo      VARCHAR(30)  NULL,
  F_VendorNo    VARCHAR(20)  NULL,
  F_ordoutqty   DOUBLE       NULL,
  F_OutDate     DATETIME     NULL,
  PRIMARY KEY (F_ID),
  KEY ix_boutmakei_prodno (F_ProdNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Purchase order headers; F_Status 3 is a closed order whose lines no longer count as open.
CREATE TABLE t_cpurh (
  F_PurNo       VARCHAR(20)  NOT NULL,
  F_PurDate     DATETIME     NULL,
  F_VendorNo    VARCHAR(20)  NULL,
  F_Status      SMALLINT     NULL,
  PRIMARY KEY (F_PurNo),
  KEY ix_cpurh_status (F_Status)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Purchase order lines, each bought for one production order and material; F_Status 3 closed.
CREATE TABLE t_cpuri (
  F_ID          INT          NOT NULL AUTO_INCREMENT,
  F_PurNo       VARCHAR(20)  NULL,
  F_ItemNo      VARCHAR(30)  NULL,
  F_ProdNo      DOUBLE       NULL,
  F_PurQty      DOUBLE       NULL,
  F_DeliverDate DATETIME     NULL,
  F_Status      SMALLINT     NULL,
  PRIMARY KEY (F_ID),
  KEY ix_cpuri_itemno_prodno (F_ItemNo, F_ProdNo),
  KEY ix_cpuri_prodno (F_ProdNo),
  KEY ix_cpuri_purno (F_PurNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Bills of material: one row per product (F_GoodsNo) and component (F_PartNo).
CREATE TABLE t_ebom (
  F_ID          INT          NOT NULL AUTO_INCREMENT,
  F_GoodsNo     VARCHAR(30)  NULL,
  F_PartNo      VARCHAR(30)  NULL,
  F_Dosage      DOUBLE       NULL,
  F_Waste       DOUBLE       NULL,
  F_LeadDay     SMALLINT     NULL,
  PRIMARY KEY (F_ID),
  KEY ix_ebom_goodsno (F_GoodsNo, F_PartNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Approval of a product's bill of material; an empty F_Approve means not approved.
CREATE TABLE t_ebomcheck (
  F_GoodsNo     VARCHAR(30)  NOT NULL,
  F_Approve     VARCHAR(20)  NULL,
  F_ApproveDate DATETIME     NULL,
  PRIMARY KEY (F_GoodsNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- Item master: products and materials.
CREATE TABLE t_eitem (
  F_ItemNo      VARCHAR(30)  NOT NULL,
  F_Type        VARCHAR(20)  NULL,
  F_ItemName    VARCHAR(100) NULL,
  F_ItemDesc    VARCHAR(255) NULL,
  F_Unit        VARCHAR(10)  NULL,
  PRIMARY KEY (F_ItemNo)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;

-- The component's own lock rows. With the connection option serialize_allocation=1,
-- clsDataPOrderChk.AddRecord allocates production numbers inside one transaction that first writes
-- the row 'production number' (it is added by that first write, so the table starts empty). Writing
-- the same row makes concurrent allocations wait for each other on one server and conflict at
-- certification on a Galera cluster, where the later one runs again; a cluster needs the primary key.
-- The component creates the table itself, with this definition, in a database that lacks it.
CREATE TABLE t_tovrand_lock (
  F_Name        VARCHAR(64)  NOT NULL,
  F_Taken       BIGINT       NOT NULL DEFAULT 0,
  PRIMARY KEY (F_Name)
) ENGINE=InnoDB DEFAULT CHARSET=utf8mb4 COLLATE=utf8mb4_general_ci;
