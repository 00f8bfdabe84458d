-- Tovrand sample data: a small make-to-order manufacturer of household goods (vacuum cups,
-- kettles, folding chairs, desks), autumn 2026. Load it into freshly created tables:
--     mariadb DBNAME < schema/tovrand.sql && mariadb DBNAME < schema/sample.sql
-- It is what the demo shows and what the benchmarks grow from.
--
-- Customers (the customer numbers used below):
--   C001 宁波华美贸易有限公司      C002 深圳优品家居有限公司      C003 上海禾田百货有限公司
--   C004 杭州悦居电器有限公司      C005 Hamburg Haushaltswaren GmbH
-- Suppliers: V001 佛山金鼎不锈钢有限公司, V002 慈溪恒达塑料制品厂, V003 永康顺发五金厂,
--   V004 宁海永盛户外用品厂 (outsourced processing).
-- Warehouses: W01 原料仓, W01-B 原料仓二区, W02 成品仓, W03 包材仓.
--
-- Production numbers are yyyymm + a four-digit sequence: September to November 2026.
-- Production order status: 0 or NULL open, 1 finished, 2 closed (sales lines marked 2 as well).
-- Planning status: 1 planned, 2 and 3 taken up by purchasing. Purchase status 3: closed.

SET NAMES utf8mb4;

-- Item master: four products and sixteen materials.
INSERT INTO t_eitem (F_ItemNo, F_Type, F_ItemName, F_ItemDesc, F_Unit) VALUES
  ('FG-1001', '成品',   '不锈钢真空保温杯', '500ml 304不锈钢 双层真空 弹跳盖', '只'),
  ('FG-1002', '成品',   '电热水壶',         '1.7L 1800W 304不锈钢内胆',        '台'),
  ('FG-1003', '成品',   '铝合金折叠椅',     '户外便携 承重120kg 黑色',          '把'),
  ('FG-1004', '成品',   '实木书桌',         '橡木 1200×600×750 带双抽屉',      '张'),
  ('RM-2001', '原材料', '304不锈钢卷板',    '厚0.5mm 宽300mm',                  '千克'),
  ('RM-2002', '外购件', '杯盖组件',         'PP 弹跳扣 含按钮弹簧',              '套'),
  ('RM-2003', '外购件', '硅胶密封圈',       '食品级 Φ68',                       '个'),
  ('PK-2004', '包材',   '彩盒',             '保温杯用 四色印刷 350g白卡',        '个'),
  ('PK-2005', '包材',   '外箱',             '五层瓦楞 24只装',                   '个'),
  ('RM-2006', '外购件', '发热盘',           '1800W 不锈钢底盘',                  '个'),
  ('RM-2007', '外购件', '温控器',           'KSD 蒸汽式 自动断电',               '个'),
  ('RM-2008', '外购件', '电源线组件',       '3C认证 1.0m 带底座',                '条'),
  ('RM-2009', '外购件', '壶身外壳',         'PP 注塑 白色',                      '个'),
  ('RM-2010', '原材料', '铝合金管',         '6061 Φ22×1.2',                     '米'),
  ('RM-2011', '外购件', '牛津布座面',       '600D 黑色 含靠背',                  '块'),
  ('RM-2012', '外购件', '塑料脚套',         'PE Φ22',                           '个'),
  ('RM-2013', '外购件', '不锈钢螺丝',       'M6×30 内六角',                     '个'),
  ('RM-2014', '原材料', '橡木板',           '25mm 烘干 AB级',                    '平方米'),
  ('RM-2015', '外购件', '抽屉滑轨',         '三节 350mm',                        '副'),
  ('RM-2016', '外购件', '五金拉手',         '锌合金 96孔距',                     '个');

-- Bills of material of the four products (dosage per unit, waste rate, lead time in days).
INSERT INTO t_ebom (F_GoodsNo, F_PartNo, F_Dosage, F_Waste, F_LeadDay) VALUES
  ('FG-1001', 'RM-2001', 0.32,   0.05, 7),
  ('FG-1001', 'RM-2002', 1,      0.01, 5),
  ('FG-1001', 'RM-2003', 1,      0.02, 3),
  ('FG-1001', 'PK-2004', 1,      0,    5),
  ('FG-1001', 'PK-2005', 0.0417, 0,    3),
  ('FG-1002', 'RM-2001', 0.45,   0.05, 7),
  ('FG-1002', 'RM-2006', 1,      0.01, 10),
  ('FG-1002', 'RM-2007', 1,      0.01, 10),
  ('FG-1002', 'RM-2008', 1,      0,    7),
  ('FG-1002', 'RM-2009', 1,      0.02, 12),
  ('FG-1003', 'RM-2010', 3.2,    0.03, 7),
  ('FG-1003', 'RM-2011', 1,      0.02, 5),
  ('FG-1003', 'RM-2012', 4,      0.01, 3),
  ('FG-1003', 'RM-2013', 8,      0.02, 3),
  ('FG-1004', 'RM-2014', 1.1,    0.08, 15),
  ('FG-1004', 'RM-2015', 1,      0,    10),
  ('FG-1004', 'RM-2016', 2,      0,    5),
  ('FG-1004', 'RM-2013', 12,     0.02, 3);

-- The desk's bill of material is still waiting for approval.
INSERT INTO t_ebomcheck (F_GoodsNo, F_Approve, F_ApproveDate) VALUES
  ('FG-1001', '张建国', '2026-08-10 16:20:00'),
  ('FG-1002', '李明',   '2026-08-21 10:05:00'),
  ('FG-1003', '张建国', '2026-09-04 14:40:00'),
  ('FG-1004', '',       NULL);

-- Sales orders. 2611015 is new: no production numbers yet, so not flagged.
INSERT INTO t_borderh (F_OrderNo, F_OrderDate, F_CustNo, F_CorderNo, F_SalerID, F_Flags, F_Note) VALUES
  (2609003, '2026-09-02 10:15:00', 'C001', 'HM-PO-260901', '王芳', 1, '年度框架订单第三批'),
  (2609011, '2026-09-18 14:30:00', 'C002', 'YP-2026-0917', '刘洋', 1, '书桌待BOM审核后再排产'),
  (2610004, '2026-10-08 09:40:00', 'C003', 'HT-1008-A',    '王芳', 1, NULL),
  (2610019, '2026-10-27 16:05:00', 'C005', 'HHW-4711',     '陈静', 1, 'Export, Hamburg; 英文彩盒'),
  (2611006, '2026-11-09 11:20:00', 'C004', 'YJ-20261109',  '刘洋', 1, NULL),
  (2611015, '2026-11-20 15:45:00', 'C001', 'HM-PO-261118', '王芳', 0, '新订单');

INSERT INTO t_borderi (F_OrderNo, F_No, F_ItemNo, F_CItemNo, F_OrderQty, F_DeliverDate, F_BkQty, F_ProdNo, F_Status) VALUES
  (2609003, '1', 'FG-1001', 'HM-CUP500', 3000, '2026-10-20', 0,   2026090001, 1),
  (2609003, '2', 'FG-1002', 'HM-KT17',   800,  '2026-10-25', 50,  2026090002, 2),
  (2609011, '1', 'FG-1003', 'YP-FC01',   1200, '2026-11-05', 0,   2026090003, NULL),
  (2609011, '2', 'FG-1004', 'YP-DK12',   150,  '2026-12-15', 0,   NULL,       NULL),
  (2610004, '1', 'FG-1001', 'HT-BW500',  1500, '2026-11-25', 100, 2026100001, NULL),
  (2610004, '2', 'FG-1003', 'HT-CH22',   500,  '2026-11-30', 0,   2026100002, NULL),
  (2610004, '3', 'FG-1002', 'HT-WK17',   300,  '2026-12-05', 0,   2026100003, NULL),
  (2610019, '1', 'FG-1001', 'HH-47110',  5000, '2027-01-10', 200, 2026110001, NULL),
  (2610019, '2', 'FG-1002', 'HH-47120',  600,  '2027-01-10', 0,   NULL,       NULL),
  (2611006, '1', 'FG-1003', 'YJ-FC-B',   800,  '2026-12-20', 0,   2026110002, NULL),
  (2611006, '2', 'FG-1001', 'YJ-BW-R',   1000, '2026-12-28', 0,   2026110003, NULL),
  (2611006, '3', 'FG-1004', 'YJ-DESK',   60,   '2027-01-15', 0,   NULL,       NULL),
  (2611015, '1', 'FG-1001', 'HM-CUP500', 2500, '2027-01-08', 0,   NULL,       NULL),
  (2611015, '2', 'FG-1002', 'HM-KT17',   400,  '2027-01-08', 0,   NULL,       NULL),
  (2611015, '3', 'FG-1003', 'HM-FC22',   700,  '2027-01-20', 0,   NULL,       NULL);

-- Reviews: a row per allocated production number, then the departments' sign-offs, as the
-- review screens write them. 2026110002 is half way through, 2026110003 not started.
INSERT INTO t_porderchk (F_ProdNo, F_OrderNo, F_CustNo, F_ItemNo, F_CorderNo, F_OrderCount, F_DeliverDate, F_CItemNo) VALUES
  (2026090001, 2609003, 'C001', 'FG-1001', 'HM-PO-260901', 3000, '2026-10-20', 'HM-CUP500'),
  (2026090002, 2609003, 'C001', 'FG-1002', 'HM-PO-260901', 800,  '2026-10-25', 'HM-KT17'),
  (2026090003, 2609011, 'C002', 'FG-1003', 'YP-2026-0917', 1200, '2026-11-05', 'YP-FC01'),
  (2026100001, 2610004, 'C003', 'FG-1001', 'HT-1008-A',    1500, '2026-11-25', 'HT-BW500'),
  (2026100002, 2610004, 'C003', 'FG-1003', 'HT-1008-A',    500,  '2026-11-30', 'HT-CH22'),
  (2026100003, 2610004, 'C003', 'FG-1002', 'HT-1008-A',    300,  '2026-12-05', 'HT-WK17'),
  (2026110001, 2610019, 'C005', 'FG-1001', 'HHW-4711',     5000, '2027-01-10', 'HH-47110'),
  (2026110002, 2611006, 'C004', 'FG-1003', 'YJ-20261109',  800,  '2026-12-20', 'YJ-FC-B'),
  (2026110003, 2611006, 'C004', 'FG-1001', 'YJ-20261109',  1000, '2026-12-28', 'YJ-BW-R');

UPDATE t_porderchk SET F_BStradCon = 1, F_BSNote = '按框架协议价格', F_BSAlertNote = '',
       F_BSChecker = '王芳', F_BSCheckTime = '2026-09-03 09:12:00'
 WHERE F_ProdNo IN (2026090001, 2026090002);
UPDATE t_porderchk SET F_BStradCon = 1, F_BSNote = '月结60天', F_BSAlertNote = '交期紧',
       F_BSChecker = '刘洋', F_BSCheckTime = '2026-09-19 10:02:00'
 WHERE F_ProdNo = 2026090003;
UPDATE t_porderchk SET F_BStradCon = 1, F_BSNote = '', F_BSAlertNote = '',
       F_BSChecker = '王芳', F_BSCheckTime = '2026-10-09 08:55:00'
 WHERE F_ProdNo IN (2026100001, 2026100002, 2026100003);
UPDATE t_porderchk SET F_BStradCon = 1, F_BSNote = 'FOB宁波 信用证', F_BSAlertNote = '英文包装',
       F_BSChecker = '陈静', F_BSCheckTime = '2026-11-02 13:30:00'
 WHERE F_ProdNo = 2026110001;
UPDATE t_porderchk SET F_BStradCon = 0, F_BSNote = '预付款未到', F_BSAlertNote = '款到排产',
       F_BSChecker = '刘洋', F_BSCheckTime = '2026-11-10 09:20:00'
 WHERE F_ProdNo = 2026110002;

UPDATE t_porderchk SET F_EGAdmit = 1, F_EGModel = 1, F_EGNote = 'BOM已审核',
       F_EGChecker = '张建国', F_EGCheckTime = '2026-09-04 15:00:00'
 WHERE F_ProdNo IN (2026090001, 2026090002, 2026090003);
UPDATE t_porderchk SET F_EGAdmit = 1, F_EGModel = 1, F_EGNote = '',
       F_EGChecker = '李明', F_EGCheckTime = '2026-10-09 14:10:00'
 WHERE F_ProdNo IN (2026100001, 2026100002, 2026100003);
UPDATE t_porderchk SET F_EGAdmit = 1, F_EGModel = 0, F_EGNote = '需开英文彩盒新版',
       F_EGChecker = '李明', F_EGCheckTime = '2026-11-03 10:45:00'
 WHERE F_ProdNo = 2026110001;
UPDATE t_porderchk SET F_EGAdmit = 1, F_EGModel = 1, F_EGNote = '沿用YP-FC01图纸',
       F_EGChecker = '张建国', F_EGCheckTime = '2026-11-11 16:25:00'
 WHERE F_ProdNo = 2026110002;

UPDATE t_porderchk SET F_WIFill = F_OrderCount, F_WIEndtime = '2026-10-12 00:00:00', F_WPStock = 0,
       F_WPEndTime = '2026-10-15 00:00:00', F_WINote = '', F_WIChecker = '赵磊',
       F_WIChecktime = '2026-09-05 09:30:00'
 WHERE F_ProdNo IN (2026090001, 2026090002, 2026090003);
UPDATE t_porderchk SET F_WIFill = F_OrderCount - 150, F_WIEndtime = '2026-11-15 00:00:00', F_WPStock = 150,
       F_WPEndTime = '2026-11-18 00:00:00', F_WINote = '成品仓有库存150', F_WIChecker = '赵磊',
       F_WIChecktime = '2026-10-10 10:00:00'
 WHERE F_ProdNo IN (2026100001, 2026100002, 2026100003, 2026110001);

UPDATE t_porderchk SET F_PUprovider = 1, F_PUNote = '', F_PUChecker = '孙丽',
       F_PUCheckTime = '2026-09-06 11:00:00'
 WHERE F_ProdNo IN (2026090001, 2026090002, 2026090003, 2026100001, 2026100002, 2026100003);
UPDATE t_porderchk SET F_PUprovider = 1, F_PUNote = '不锈钢板涨价 需确认', F_PUChecker = '孙丽',
       F_PUCheckTime = '2026-11-04 14:00:00'
 WHERE F_ProdNo = 2026110001;

UPDATE t_porderchk SET F_QCStd = 1, F_QCNote = '按企业标准Q/HM 012', F_QChecker = '周涛',
       F_QCheckTime = '2026-09-07 09:00:00'
 WHERE F_ProdNo IN (2026090001, 2026090002, 2026090003, 2026100001, 2026100002, 2026100003);
UPDATE t_porderchk SET F_QCStd = 1, F_QCNote = 'LFGB检测报告随货', F_QChecker = '周涛',
       F_QCheckTime = '2026-11-04 16:30:00'
 WHERE F_ProdNo = 2026110001;

UPDATE t_porderchk SET F_MKDate = 1, F_MKNote = '', F_MKChecker = '吴强', F_MKCheckTime = '2026-09-08 10:00:00'
 WHERE F_ProdNo IN (2026090001, 2026090002, 2026090003);
UPDATE t_porderchk SET F_MKDate = 1, F_MKNote = '插单', F_MKChecker = '吴强', F_MKCheckTime = '2026-10-12 10:30:00'
 WHERE F_ProdNo IN (2026100001, 2026100002, 2026100003);
UPDATE t_porderchk SET F_MKDate = 1, F_MKNote = '外发永盛', F_MKChecker = '吴强',
       F_MKCheckTime = '2026-11-05 08:40:00', F_AlerTime = '2026-12-20 00:00:00'
 WHERE F_ProdNo = 2026110001;

UPDATE t_porderchk SET F_Way = '自制', F_CSNote = '同意', F_CSChecker = '郑总', F_CSCheckTime = '2026-09-08 17:00:00', F_Status = 1
 WHERE F_ProdNo IN (2026090001, 2026090002, 2026100001);
UPDATE t_porderchk SET F_Way = '外发加工', F_CSNote = '同意外发', F_CSChecker = '郑总', F_CSCheckTime = '2026-09-08 17:05:00', F_Status = 1
 WHERE F_ProdNo IN (2026090003, 2026100002);
UPDATE t_porderchk SET F_Way = '直接采购', F_CSNote = '成品直接采购', F_CSChecker = '郑总', F_CSCheckTime = '2026-10-12 17:20:00', F_Status = 1
 WHERE F_ProdNo = 2026100003;
UPDATE t_porderchk SET F_Way = '外发加工', F_CSNote = '同意', F_CSChecker = '郑总', F_CSCheckTime = '2026-11-05 17:00:00', F_Status = 1
 WHERE F_ProdNo = 2026110001;

-- Production orders of the reviews that passed.
INSERT INTO t_porder (F_ProdNo, F_OrderMode, F_OrderNo, F_OrderOutNo, F_ItemNo, F_CustNo, F_COrderNo,
                      F_InQty, F_InDate, F_OutQty, F_OutDate, F_OutBkQty, F_BalQty, F_OrdQty,
                      F_DeliverDate, F_ProdQty, F_ProdDate, F_Status, F_SalerID, F_WoNo) VALUES
  (2026090001, '自制',     2609003, NULL,     'FG-1001', 'C001', 'HM-PO-260901', 3000, '2026-10-16 17:00:00',
   3000, '2026-10-19 09:00:00', 0,    0,    3000, '2026-10-20', 3000, '2026-10-15', 1,    '王芳', 26090001),
  (2026090002, '自制',     2609003, NULL,     'FG-1002', 'C001', 'HM-PO-260901', 800,  '2026-10-22 16:00:00',
   800,  '2026-10-24 10:00:00', 12,   0,    800,  '2026-10-25', 800,  '2026-10-21', 2,    '王芳', 26090002),
  (2026090003, '外发加工', 2609011, 26100001, 'FG-1003', 'C002', 'YP-2026-0917', 600,  '2026-10-30 15:00:00',
   NULL, NULL,                  NULL, 1200, 1200, '2026-11-05', NULL, NULL,         0,    '刘洋', NULL),
  (2026100001, '自制',     2610004, NULL,     'FG-1001', 'C003', 'HT-1008-A',    NULL, NULL,
   NULL, NULL,                  NULL, 1500, 1500, '2026-11-25', 600,  '2026-11-18', 0,    '王芳', 26100001),
  (2026100002, '外发加工', 2610004, 26110002, 'FG-1003', 'C003', 'HT-1008-A',    NULL, NULL,
   NULL, NULL,                  NULL, 500,  500,  '2026-11-30', NULL, NULL,         0,    '王芳', NULL),
  (2026100003, '直接采购', 2610004, NULL,     'FG-1002', 'C003', 'HT-1008-A',    NULL, NULL,
   NULL, NULL,                  NULL, 300,  300,  '2026-12-05', NULL, NULL,         0,    '王芳', NULL),
  (2026110001, '外发加工', 2610019, NULL,     'FG-1001', 'C005', 'HHW-4711',     NULL, NULL,
   NULL, NULL,                  NULL, 5000, 5000, '2027-01-10', NULL, NULL,         NULL, '陈静', NULL);

-- Outsourcing orders: 2026090003 is partly given out, 2026100002 completely, 2026110001 not yet.
INSERT INTO t_boutmakei (F_OrderOutNo, F_No, F_ProdNo, F_ItemNo, F_VendorNo, F_ordoutqty, F_OutDate) VALUES
  (26100001, '1', 2026090003, 'FG-1003', 'V004', 800, '2026-10-05 10:00:00'),
  (26100008, '1', 2026100002, 'FG-1003', 'V004', 300, '2026-10-28 14:00:00'),
  (26110002, '1', 2026100002, 'FG-1003', 'V004', 200, '2026-11-06 09:30:00');

-- Stock summary (no row yet for the desk materials, the chair seat and the desk itself) and the
-- stock on hand per warehouse location.
INSERT INTO t_wstockqtyh (F_ItemNo, F_SafeQty, F_NoPoStockQty) VALUES
  ('RM-2001', 100,  350),
  ('RM-2002', 200,  0),
  ('RM-2003', 200,  300),
  ('PK-2004', 500,  420),
  ('PK-2005', 50,   80),
  ('RM-2006', 50,   120),
  ('RM-2007', 50,   60),
  ('RM-2008', 100,  240),
  ('RM-2009', 50,   35),
  ('RM-2010', 200,  180),
  ('RM-2012', 500,  1500),
  ('RM-2013', 1000, 6000),
  ('FG-1001', 200,  150),
  ('FG-1002', 20,   12),
  ('FG-1003', 50,   250);

INSERT INTO t_wstockqtyi (F_ItemNo, F_WhNo, F_StockQty) VALUES
  ('RM-2001', 'W01',   420),
  ('RM-2001', 'W01-B', 150),
  ('RM-2002', 'W01',   200),
  ('RM-2003', 'W01',   500),
  ('PK-2004', 'W03',   920),
  ('PK-2005', 'W03',   130),
  ('RM-2006', 'W01',   170),
  ('RM-2007', 'W01',   110),
  ('RM-2008', 'W01',   340),
  ('RM-2009', 'W01',   85),
  ('RM-2010', 'W01',   380),
  ('RM-2012', 'W01',   2000),
  ('RM-2013', 'W01',   4000),
  ('RM-2013', 'W01-B', 3000),
  ('FG-1001', 'W02',   350),
  ('FG-1002', 'W02',   32),
  ('FG-1003', 'W02',   300);

-- Stock reserved by planning.
INSERT INTO t_wstockqtys (F_ProdNo, F_ItemNo, F_ReduceQty) VALUES
  (2026090003, 'RM-2012', 500),
  (2026100001, 'FG-1001', 200),
  (2026100001, 'RM-2001', 200),
  (2026100001, 'RM-2003', 500),
  (2026100001, 'PK-2005', 54.21),
  (2026110001, 'RM-2001', 120),
  (2026110001, 'PK-2004', 420);

-- Purchase orders; PO-26090021 is closed, and so is one line of PO-26101002.
INSERT INTO t_cpurh (F_PurNo, F_PurDate, F_VendorNo, F_Status) VALUES
  ('PO-26090021', '2026-09-12 09:00:00', 'V001', 3),
  ('PO-26101002', '2026-10-10 10:30:00', 'V002', 1),
  ('PO-26101015', '2026-10-22 14:15:00', 'V003', 1),
  ('PO-26111003', '2026-11-12 11:00:00', 'V001', 0);

INSERT INTO t_cpuri (F_PurNo, F_ItemNo, F_ProdNo, F_PurQty, F_DeliverDate, F_Status) VALUES
  ('PO-26090021', 'RM-2001', 2026090001, 940.8,  '2026-09-25', 3),
  ('PO-26090021', 'RM-2002', 2026090001, 2828,   '2026-09-25', 3),
  ('PO-26090021', 'RM-2003', 2026090001, 2856,   '2026-09-25', 3),
  ('PO-26101002', 'RM-2002', 2026100001, 1313,   '2026-10-25', 1),
  ('PO-26101002', 'RM-2001', 2026100001, 236.8,  '2026-10-25', 1),
  ('PO-26101002', 'RM-2012', 2026090003, 4848,   '2026-10-20', 3),
  ('PO-26101015', 'PK-2004', 2026100001, 1300,   '2026-11-05', 1),
  ('PO-26101015', 'RM-2010', 2026090003, 3955.2, '2026-10-28', 1),
  ('PO-26111003', 'RM-2001', 2026110001, 1000,   '2026-12-01', 0),
  ('PO-26111003', 'RM-2002', 2026110001, 5050,   '2026-12-05', 0),
  ('PO-26111003', 'FG-1002', 2026100003, 300,    '2026-11-28', 0);

-- Material planning: a header per production order (the product) and a line per material. The
-- kettles of 2026100003 are bought directly, so its lines request nothing and were never taken up
-- (status 0).
INSERT INTO t_pmrph (F_ProdNo, F_ItemNo, F_OrderQty, F_SafeQty, F_NeedQty, F_PlanPurQty, F_Status) VALUES
  (2026090001, 'FG-1001', 3000, 200, 2800, 0,   3),
  (2026090003, 'FG-1003', 1200, 0,   1200, 0,   2),
  (2026100001, 'FG-1001', 1600, 200, 1300, 0,   2),
  (2026100003, 'FG-1002', 300,  20,  300,  300, 1),
  (2026110001, 'FG-1001', 5200, 200, 5200, 0,   1);

INSERT INTO t_pmrpi (F_ProdNo, F_ItemNo, F_Dosage, F_Waste, F_SafeQty, F_RequestQty, F_LeadTime, F_Status) VALUES
  (2026090001, 'RM-2001', 0.32,   0.05, 100,  940.8,  7,  3),
  (2026090001, 'RM-2002', 1,      0.01, 200,  2828,   5,  3),
  (2026090001, 'RM-2003', 1,      0.02, 200,  2856,   3,  3),
  (2026090001, 'PK-2004', 1,      0,    500,  0,      5,  3),
  (2026090001, 'PK-2005', 0.0417, 0,    50,   0,      3,  3),
  (2026090003, 'RM-2010', 3.2,    0.03, 200,  3955.2, 7,  2),
  (2026090003, 'RM-2011', 1,      0.02, 0,    1224,   5,  3),
  (2026090003, 'RM-2012', 4,      0.01, 500,  4348,   3,  2),
  (2026090003, 'RM-2013', 8,      0.02, 1000, 0,      3,  3),
  (2026100001, 'RM-2001', 0.32,   0.05, 100,  236.8,  7,  2),
  (2026100001, 'RM-2002', 1,      0.01, 200,  1313,   5,  2),
  (2026100001, 'RM-2003', 1,      0.02, 200,  826,    3,  1),
  (2026100001, 'PK-2004', 1,      0,    500,  1300,   5,  1),
  (2026100001, 'PK-2005', 0.0417, 0,    50,   0,      3,  1),
  (2026110001, 'RM-2001', 0.32,   0.05, 100,  1627.2, 7,  1),
  (2026110001, 'RM-2002', 1,      0.01, 200,  5252,   5,  1),
  (2026110001, 'RM-2003', 1,      0.02, 200,  5304,   3,  1),
  (2026110001, 'PK-2004', 1,      0,    500,  4780,   5,  1),
  (2026110001, 'PK-2005', 0.0417, 0,    50,   216.84, 3,  1),
  (2026100003, 'RM-2001', 0.45,   0.05, 100,  0,      7,  0),
  (2026100003, 'RM-2006', 1,      0.01, 50,   0,      10, 0);
