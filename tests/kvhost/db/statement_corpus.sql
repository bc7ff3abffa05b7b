-- estate sheet: code unique among the other estates
 Select 物业编号 From fwwy Where 物业编号='WY01' And 物业ID<>0
;;
-- estate sheet: name unique among the other estates
 Select 物业名称 From fwwy Where 物业名称='阳光花园' And 物业ID<>0
;;
-- estate sheet: insert a new estate
InSert Into fwwy(物业ID,物业编号,物业名称,开发商,所属区域,建成年份) Values (201,'WY01','阳光花园','城建开发公司','东城区','2008')
;;
-- estate sheet: update the estate
UpDate fwwy set 物业编号='WY01',物业名称='阳光花园',开发商='城建开发公司',所属区域='东城区',建成年份='2008年' Where 物业ID=201
;;
-- estate sheet: tree of all estates
select * from fwwy order by 物业编号
;;
-- estate sheet: load one estate
select * from fwwy where 物业ID=201
;;
-- estate field of the building sheet: typed estate code or name checked
select * from fwwy where 物业编号='WY01' or 物业名称='WY01'
;;
-- developer field of the estate sheet: typed entry of the dictionary checked
select * from pdmsjzd where 类型='开发商' and (代码='01' or 名称='01')
;;
-- building sheet: code unique among the other buildings
 Select 楼宇编号 From fwly Where 楼宇编号='LY01' And 楼宇ID<>0
;;
-- building sheet: insert a new building
InSert Into fwly(楼宇ID,楼宇编号,楼宇名称,物业ID,楼宇类型,占地面积,建筑面积,位置,简介) Values (101,'LY01','一号楼',201,'高层住宅',1200.5,8600,'小区东门内','十八层住宅楼')
;;
-- building sheet: update the building
UpDate fwly set 楼宇编号='LY01',楼宇名称='一号楼',物业ID=201,楼宇类型='高层住宅',占地面积=1200.5,建筑面积=8600,位置='小区东门内',简介='十八层住宅楼，两部电梯' Where 楼宇ID=101
;;
-- building sheet: tree of all buildings
select * from fwly order by 楼宇编号
;;
-- building sheet: load one building with its estate
select A.*,B.物业名称 as 所属物业 from fwly A left join fwwy B on A.物业ID=B.物业ID where 楼宇ID=101
;;
-- fee category dialog: code unique among the other categories
select 费用ID from fwfykm where 费用编号='FY01' and 费用ID<>0
;;
-- fee category dialog: insert a new category
insert into fwfykm(费用ID,费用编号,费用名称,计费方式,单价)values(301,'FY01','物业管理费','按面积',1.5)
;;
-- fee category dialog: update the category
UpDate fwfykm set 费用编号='FY01',费用名称='物业管理费',计费方式='按面积',单价=1.8 Where 费用ID=301
;;
-- fee category list and dialog: load one category
select * from fwfykm where 费用ID=301
;;
-- fee category list: all categories
select 费用编号,费用名称,计费方式,单价,费用ID from fwfykm order by 费用编号
;;
-- party dialog: name unique among the other parties
select 业主ID from fwyz where 业主名称='王建国' and 业主ID<>0
;;
-- party dialog: insert a new party
insert into fwyz(业主ID,业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,类型)values(401,'YZ01','王建国','男','13800000001','110101197001010011','北京','市建一公司','老业主',0)
;;
-- party dialog: update the party
UpDate fwyz set 业主编号='YZ01',业主名称='王建国',性别='男',电话='13800000001',身份证号='110101197001010011',籍贯='北京',工作单位='市建一公司',备注='老业主，两套房',类型=0 Where 业主ID=401
;;
-- party list and dialog: load one party
select * from fwyz where 业主ID=401
;;
-- party list: owners or clients by code
select 业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,业主ID from fwyz where 类型=0 order by 业主编号
;;
-- housing register dialog: code unique among the other units
select 房源ID from fwfy where 房源编号='FY502' and 房源ID<>0
;;
-- housing register dialog: insert a new unit
insert into fwfy(房源ID,房源编号,房源名称,物业ID,楼宇ID,朝向,户型,楼层,结构,面积,出租状态,业主ID,备注)values(502,'FY502','O''Brien 公寓',201,101,'南','两室一厅','5','框架',60.25,'已出租',401,'')
;;
-- housing register dialog: update the unit
UpDate fwfy set 房源编号='FY502',房源名称='五零二',物业ID=201,楼宇ID=101,朝向='南',户型='两室一厅',楼层='5',结构='框架',面积=0,出租状态='未出租',业主ID=401,备注='朝南' Where 房源ID=502
;;
-- housing register dialog: load one unit with the names of its estate, building and owner
select A.*,B.物业名称,C.楼宇名称,D.业主名称 from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID where 房源ID=502
;;
-- housing register list: one unit after a save
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID where 房源ID=502
;;
-- housing register list: all units by code
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID order by 房源编号
;;
-- unit validity tool: a contract in force on the unit
 SELECT 房源ID FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID  where fwhdmx.房源ID=502 and smark='02' and 状态='生效'
;;
-- unit validity tool: the unit withdrawn already
 select 房源ID from fwfy where 房源ID=502 and 出租状态='已失效'
;;
-- unit validity tool: withdraw the unit
 update fwfy   set 出租状态='已失效'  where 房源ID=502
;;
-- unit validity tool: the unit not withdrawn
 select 房源ID from fwfy where 房源ID=502 and 出租状态<>'已失效'
;;
-- unit validity tool: bring the unit back
 update fwfy   set 出租状态='未出租'  where 房源ID=502
;;
-- field list of the estates
select 物业编号,物业名称,物业ID from fwwy order by 物业编号
;;
-- field list of a dictionary type
select 代码,名称,ID from pdmsjzd where 类型='楼宇类型' order by 代码
;;
-- field list of the sales staff
select 代码,名称,AutoID from pdmxsy where 类型ID=1 order by 代码
;;
-- code picker: clients with telephone and address
select null,业主编号,业主名称,业主ID,电话,地址,联系人,备注 from fwyz where 类型=1 order by 业主编号
;;
-- code picker: typed client checked
select 业主编号,业主名称,业主ID from fwyz Where (业主编号='KH01' OR 业主名称='KH01') and 类型=1
;;
-- housing unit picker: buildings of the combo box
select 楼宇ID,楼宇名称 from fwly order by 楼宇编号
;;
-- housing unit picker: units of a state, a contract and a building
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID where 1=1 and A.出租状态='未出租' and A.房源ID in(select 房源ID from fwhdmx where 合同ID=701) and A.楼宇ID=101 order by 房源编号
;;
-- housing unit picker: typed unit checked within the locked building
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID Where (房源编号='FY002' OR 房源名称='FY002') and 楼宇名称='一号楼' and A.出租状态='未出租'
;;
-- housing list: every condition and every state
 SELECT FwFy.房源ID, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, FwFy.所属区域, FwFy.楼宇类型, FwFy.物业用途,       FwFy.户型, FwFy.面积, FwFy.楼层, FwFy.总楼层, PDMXSY.名称 As 业务员, FwFy.出租价格, FwFy.出租状态  FROM (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID WHERE 1=1 and FwFy.所属区域='东区' and FwWy.物业名称='O''Hara 苑' and FwFy.户型='两室一厅' and FwFy.物业用途='住宅' and FwFy.楼宇类型='高层' and FwFy.出租价格 >=1000 and FwFy.出租价格 <=3000 and FwFy.面积 >=60 and FwFy.面积 <=120 and fwfy.业务员ID=1 and ( FwFy.出租状态='未出租' or  FwFy.出租状态='已出租' or  FwFy.出租状态='部分出租' or fwfy.出租状态='已分租' or  FwFy.出租状态='已失效')
;;
-- housing list: no state ticked
 SELECT FwFy.房源ID, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, FwFy.所属区域, FwFy.楼宇类型, FwFy.物业用途,       FwFy.户型, FwFy.面积, FwFy.楼层, FwFy.总楼层, PDMXSY.名称 As 业务员, FwFy.出租价格, FwFy.出租状态  FROM (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID WHERE 1=1 and 1<>1
;;
-- contract picker: approved contracts of an estate, a layout and a state
 SELECT fwhd.合同ID,FwHd.合同编号,FwYz.业主名称,FwYz.电话,FwFy.房源编号,FwFy.房源名称,FwWy.物业名称,FwFy.具体地址,FwHd.起租日期,FwHd.止租日期,FwHd.租赁期,FwHd.收款期间   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID   where fwhd.smark='02' and fwwy.物业名称='O''Hara 苑' and fwfy.户型='两室一厅' and fwhd.状态='生效'   ORDER BY Fwhd.合同编号
;;
-- contract picker: contracts in force for a receipt
 SELECT fwhd.合同ID,FwHd.合同编号,FwYz.业主名称,FwYz.电话,FwFy.房源编号,FwFy.房源名称,FwWy.物业名称,FwFy.具体地址,FwHd.起租日期,FwHd.止租日期,FwHd.租赁期,FwHd.收款期间   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID   where fwhd.smark='02' and fwhd.状态='生效'   ORDER BY Fwhd.合同编号
;;
-- contract picker: typed contract or unit number checked
 SELECT fwhd.合同ID,FwHd.合同编号,FwYz.业主名称,FwYz.电话,FwFy.房源编号,FwFy.房源名称,FwWy.物业名称,FwFy.具体地址,FwHd.起租日期,FwHd.止租日期,FwHd.租赁期,FwHd.收款期间   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID   where fwhd.smark='02' and fwwy.物业名称='阳光花园'  AND ( Fwhd.合同编号 like 'HT''0%' OR FwFy.房源编号 Like 'HT''0%' )
;;
-- contract sheet: the last contract of the key within the months back
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where progid=870201 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01# AND 业主名称 like 'O''Neil%' order by 合同ID desc
;;
-- contract sheet: the fee terms of the contract shown
 SELECT 费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,合同明细ID FROM fwhdfs WHERE 合同ID=701 order by 序号
;;
-- contract sheet: the unit picked
 SELECT FwFy.房源ID, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型, FwFy.面积, FwFy.装修程度, FwFy.具体地址,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他,fwfy.出租价格   FROM FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID  where fwfy.房源ID=301
;;
-- contract sheet: the fee names of a new lease
 SELECT 名称 from pdmsjzd where 类型='费用名称' order by 代码
;;
-- contract sheet: the tenant picked
 SELECT 业主ID,业主编号,业主名称,电话,备注,联系人电话,性别,身份证号,工作单位,籍贯   FROM fwyz  where 业主ID=401
;;
-- contract sheet: the payment mode chosen
 SELECT 付租月份,押金月份   FROM pdmfzfs  where 付租方式='押二付三'
;;
-- contract sheet: the room chosen
 SELECT 面积,月租金   FROM fwfy_fz  where 房间号='A''1' and 房源id=301
;;
-- contract sheet: the unit's area and rent without a room
 select 面积,出租价格 from fwfy where 房源ID=301
;;
-- contract sheet: the house line of the print
 SELECT 楼层,房源名称,楼宇类型 from fwfy where 房源ID=301
;;
-- contract save: a new contract's typed number taken by another of the key
 select  * from  fwhd where  合同编号 ='HT''2012' and progid =870201
;;
-- contract save: the tenant by name and telephone
 SELECT 业主ID FROM fwyz where 业主名称='O''Neil 赵' and 电话='136' and 类型=1
;;
-- contract save: a tenant typed in full
 INSERT INTO fwyz (业主ID,业主编号,业主名称,电话,性别,身份证号,工作单位,籍贯,备注,类型) values (402,'402','O''Neil 赵','136','男','320102','某''公司','浙江','新客',1)
;;
-- contract save: the header of a new contract
 Insert into fwhd(合同ID,progid,smark,系统,状态,合同编号,合同日期,业务员ID,预收押金,中介费,客户ID,租住人数,押金备注1,押金备注2,押金备注3,起租日期,止租日期,租赁期,收款期间,月租金,付租方式,分租房间,面积,备注,制单人,制单日期) VALUES (701,870201,'01','填单','未生效','HT2012100001',#2012-10-11#,2,1800,300,402,2,'押''金','','现金',#2012-11-01#,#2013-10-31#,12,3,900,'押二付三','A''1',12.5,'含 O''Brien 的车位','张三',#2012-10-11#)
;;
-- contract save: the unit row of a new contract
 Insert into fwhdmx(合同明细ID,合同ID,基础设施,配套设施,房源ID) values (801,701,'燃气;','床;',301)
;;
-- contract save: a new fee term
 INSERT INTO fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,序号 ) VALUES (901,701,'房租',1,900,1,0,0,3,1)
;;
-- contract save: a new metered fee term
 INSERT INTO fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,序号 ) VALUES (902,701,'O''Brien 水费',0,0,0,120.5,3.2,1,2)
;;
-- contract save: a fixed fee term collected in arrears
 INSERT INTO fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,序号 ) VALUES (903,701,'物业管理费',1,50,0,0,0,3,3)
;;
-- contract save: whether the number of the key takes a revision
SELECT text FROM xt_BillAttribute WHERE progID=870201 and attribute='onsavecode' 
;;
-- contract save: a stored contract's number taken by another of the key
 Select  * From fwhd Where 合同ID <> 701 and progid =870201 and 合同编号='HT2012100001-1'
;;
-- contract save: a known tenant's fields
 update fwyz    set  性别='女',         身份证号='320102',         工作单位='某''公司',         籍贯='上海',         备注='新客'   where 业主ID=402
;;
-- contract save: the header of a stored contract
 UPDATE fwhd  SET 合同编号='HT2012100001-1',      合同日期=#2012-10-11#,      业务员ID=2,      预收押金=1800,      中介费=300,      客户ID=402,      租住人数=2,      押金备注1='押''金',      押金备注2='',      押金备注3='现金',      起租日期=#1900-01-01#,      止租日期=#2013-10-31#,      租赁期=12,      收款期间=3,      月租金=900,      付租方式='押二付三',      分租房间='A''1',      面积=12.5,      备注='含 O''Brien 的车位',      制单人='张三',      制单日期=#2012-10-11# WHERE 合同ID=701
;;
-- contract save: the unit row of a stored contract
 update fwhdmx set 房源ID=301,     基础设施='燃气;',     配套设施='床;' where 合同ID=701
;;
-- contract save: the fee terms removed by another unit
Delete from fwhdfs Where 合同明细ID in(902)
;;
-- contract save: a stored fee term
 UPDATE fwhdfs   SET 费用名称='物业管理费',       是否包干=1,       包干价=80,       是否预收=0,       度数=0,       单价=0,       收款期间=3,       序号=3 WHERE 合同明细ID=903
;;
-- collection schedule: drop the contract's rows
 DELETE FROM fwhdfs_sk where 合同ID=701
;;
-- collection schedule: fee terms to plan
 SELECT 费用名称,是否预收,是否包干,收款期间,度数,序号 FROM fwhdfs where 合同ID=701 order by 序号
;;
-- collection schedule: insert one period
 insert into fwhdfs_sk (AutoID,合同ID,费用名称,是否包干,是否预收,收款期间,收款日期,起始日期,结束日期,上期度数,是否最后一期,序号,是否已收) values (1101,701,'房租',1,1,3,'2012-10-15','2012-10-15','2013-01-14',0,0,1,0)
;;
-- contract approval: the state of the unit
 select 出租状态 from fwfy where 房源ID=301
;;
-- contract approval: mark the contract approved
 Update fwhd Set progID=870201,smark='02', 状态='生效', 审核人='O''Neil', 审核日期=#2012-10-11#, 系统='审核' Where 合同ID=701
;;
-- rental state: the room held by a contract in force
 SELECT 房源ID FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID  where fwhdmx.房源ID=301 and 分租房间='A''1'    and smark='02' and 状态='生效'
;;
-- rental state: the room's let flag
 UPDATE fwfy_fz   set 是否出租=1  where 房源ID=301 and 房间号='A''1'
;;
-- rental state: a whole-unit contract in force
 SELECT 房源ID FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID  where fwhdmx.房源ID=301 and 分租房间='' and smark='02' and 状态='生效'
;;
-- rental state: the rooms of the unit
 select 是否出租 from fwfy_fz where 房源ID=301
;;
-- rental state: the unit's state
 UPDATE fwfy     SET 出租状态='部分出租'   WHERE 房源ID=301
;;
-- contract status tool: the approval mark
select smark from fwhd where 合同ID=701
;;
-- contract status tool: the contract ended already
 select 合同ID from fwhd where 合同ID=701 and 状态='终止'
;;
-- contract status tool: the unit of the contract
 SELECT 房源ID FROM fwhdmx where 合同ID=701
;;
-- contract status tool: the room of the contract
 SELECT 分租房间 FROM fwhd where 合同ID=701
;;
-- contract status tool: end the contract
 update fwhd   set 状态='终止'  where 合同ID=701
;;
-- contract status tool: the contract not ended
 select 合同ID from fwhd where 合同ID=701 and 状态<>'终止'
;;
-- contract status tool: set the contract back
 update fwhd   set 状态='生效'  where 合同ID=701
;;
-- contract un-approval: a receipt naming the contract
 SELECT 合同ID from fwjs where  合同ID=701
;;
-- contract un-approval: mark the contract not approved
 Update fwhd Set progID=870201,smark='01',  状态='未生效', 审核人='O''Neil', 审核日期=#2012-10-11#, 系统='填单' Where 合同ID=701
;;
-- contract delete: drop the contract
Delete from fwhd where 合同ID=701
;;
-- contract delete: drop its unit row
Delete from fwhdmx where 合同ID=701
;;
-- contract delete: drop its fee terms
Delete from fwhdfs where 合同ID=701
;;
-- housing register delete: unit named by a contract
 select 房源ID from fwhdmx where 房源ID=502
;;
-- housing register delete: drop the unit
delete from fwfy where 房源ID=502
;;
-- party delete: party owning a housing unit
 select top 1 业主ID from fwfy where 业主ID=401
;;
-- party delete: drop the party
delete from fwyz where 业主ID=401
;;
-- fee category delete: category used by a fee receipt
 select top 1 费用ID from fwjsfy where 费用ID=301
;;
-- fee category delete: drop the category
delete from fwfykm where 费用ID=301
;;
-- building delete: building used by a housing unit
 Select Top 1 楼宇ID From fwfy Where 楼宇ID=101
;;
-- building delete: drop the building
delete from fwly where 楼宇ID=101
;;
-- estate delete: estate used by a housing unit
 Select Top 1 物业ID From fwfy Where 物业ID=201
;;
-- estate delete: drop the estate
delete from fwwy where 物业ID=201
;;
-- housing list delete: drop the unit
Delete from fwfy where 房源ID=501
