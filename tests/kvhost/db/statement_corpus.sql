-- every sheet and report: title from the menu
select menuname from xt_menu where progID=870201
;;
-- document save: number revision attribute of the function
SELECT text FROM xt_BillAttribute WHERE progID=870201 and attribute='onsavecode'
;;
-- reminders and due reports: days ahead from the settings
select item_value from xt_accinformation where system_code='fw' and item_code='yjds_zj'
;;
-- sales staff field: typed code or name checked
Select 代码,名称,AutoID From pdmxsy where 类型ID=1 and (代码='001' or 名称='001')
;;
-- estate sheet: tree of all estates
select * from fwwy order by 物业编号
;;
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
-- estate sheet: load one estate
select * from fwwy where 物业ID=201
;;
-- estate field: typed estate code or name checked
select * from fwwy where 物业编号='WY01' or 物业名称='WY01'
;;
-- dictionary field: typed entry of one list checked
select * from pdmsjzd where 类型='楼宇类型' and (代码='01' or 名称='01')
;;
-- building sheet: tree of all buildings
select * from fwly order by 楼宇编号
;;
-- building sheet: code unique among the other buildings
 Select 楼宇编号 From fwly Where 楼宇编号='LY01' And 楼宇ID<>0
;;
-- building sheet: name unique among the other buildings
 Select 楼宇名称 From fwly Where 楼宇名称='一号楼' And 楼宇ID<>0
;;
-- building sheet: insert a new building
InSert Into fwly(楼宇ID,楼宇编号,楼宇名称,物业ID,楼宇类型,占地面积,建筑面积,位置,简介) Values (101,'LY01','一号楼',201,'高层住宅',1200.5,8600,'小区东门内','十八层住宅楼')
;;
-- building sheet: update the building
UpDate fwly set 楼宇编号='LY01',楼宇名称='一号楼',物业ID=201,楼宇类型='高层住宅',占地面积=1200.5,建筑面积=8600,位置='小区东门内',简介='十八层住宅楼，两部电梯' Where 楼宇ID=101
;;
-- building sheet: load one building with its estate
select A.*,B.物业名称 as 所属物业 from fwly A left join fwwy B on A.物业ID=B.物业ID where 楼宇ID=101
;;
-- building field: typed building code or name checked
select * from fwly where 楼宇编号='LY01' or 楼宇名称='LY01'
;;
-- fee category list: all categories
select 费用编号,费用名称,计费方式,单价,费用ID from fwfykm order by 费用编号
;;
-- fee category dialog: code unique among the other categories
 Select 费用编号 From fwfykm Where 费用编号='FY01' And 费用ID<>0
;;
-- fee category dialog: name unique among the other categories
 Select 费用名称 From fwfykm Where 费用名称='物业管理费' And 费用ID<>0
;;
-- fee category dialog: insert a new category
insert into fwfykm(费用ID,费用编号,费用名称,计费方式,单价)values(301,'FY01','物业管理费','按面积',1.5)
;;
-- fee category dialog: update the category
UpDate fwfykm set 费用编号='FY01',费用名称='物业管理费',计费方式='按面积',单价=1.8 Where 费用ID=301
;;
-- fee category dialog: load one category
select * from fwfykm where 费用ID=301
;;
-- fee category field: typed fee code or name checked
select * from fwfykm where 费用编号='FY01' or 费用名称='FY01'
;;
-- party list: owners or clients by code
select 业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,业主ID from fwyz where 类型=0 order by 业主编号
;;
-- party dialog: code unique among the other parties
 Select 业主编号 From fwyz Where 业主编号='YZ01' And 业主ID<>0
;;
-- party dialog: name unique among the other parties
 Select 业主名称 From fwyz Where 业主名称='王建国' And 业主ID<>0
;;
-- party dialog: insert a new party
insert into fwyz(业主ID,业主编号,业主名称,性别,电话,身份证号,籍贯,工作单位,备注,类型)values(401,'YZ01','王建国','男','13800000001','110101197001010011','北京','市建一公司','老业主',0)
;;
-- party dialog: update the party
UpDate fwyz set 业主编号='YZ01',业主名称='王建国',性别='男',电话='13800000001',身份证号='110101197001010011',籍贯='北京',工作单位='市建一公司',备注='老业主，两套房',类型=0 Where 业主ID=401
;;
-- party list: reload one party after the dialog saved it
select * from fwyz where 业主ID=401
;;
-- owner field: typed owner code or name checked
select * from fwyz where 类型=0 and (业主编号='YZ01' or 业主名称='YZ01')
;;
-- data dictionary: district of a typed housing unit
 SELECT ID FROM pdmsjzd where 名称='朝阳区' and 类型='所属区域'
;;
-- data dictionary: add a district typed on the housing sheet
 INSERT INTO pdmsjzd (ID,代码,名称,类型,是否系统) values (1001,'1001','朝阳区','所属区域',0)
;;
-- contract sheet and receipt detail report: fee names of the dictionary
 SELECT 名称 from pdmsjzd where 类型='费用名称' order by 代码
;;
-- estate list picker: all estates
 Select 物业ID,物业编号,物业名称 From fwwy WHERE 1=1 order by  物业编号,物业名称
;;
-- estate list picker: typed estate checked
 Select 物业ID,物业编号,物业名称 From fwwy WHERE 1=1 and ( 物业编号='阳光花园' or 物业名称='阳光花园') order by  物业编号,物业名称
;;
-- owner list picker: typed owner checked
 Select 业主ID,业主编号,业主名称 From fwyz where 类型=0 and ( 业主编号='王建国' or 业主名称='王建国') order by  业主编号,业主名称
;;
-- tenant list picker: all tenants
 Select 业主ID,业主编号 As 租客编号,业主名称 As 租客姓名 From fwyz where 类型=1 order by  业主编号,业主名称
;;
-- tenant list picker: typed tenant checked
 Select 业主ID,业主编号 As 租客编号,业主名称 As 租客姓名 From fwyz where 类型=1 and ( 业主编号='赵小明' or 业主名称='赵小明') order by  业主编号,业主名称
;;
-- payment mode list picker: typed mode checked
 Select AutoID,编号,付租方式 From pdmfzfs where 1=1 and ( 编号='押一付三' or 付租方式='押一付三') order by  编号,付租方式
;;
-- code list picker: clients with telephone and address
select null,业主编号,业主名称,业主ID,电话,地址,联系人,备注 from fwyz where 类型=1 order by 业主编号
;;
-- code list picker: typed client checked
select 业主编号,业主名称,业主ID from fwyz Where (业主编号='KH01' OR 业主名称='KH01') and 类型=1
;;
-- housing unit sheet: estate of a typed name
 SELECT 物业ID FROM fwwy where 物业名称='新城小区'
;;
-- housing unit sheet: add the typed estate
 INSERT INTO fwwy (物业ID,物业编号,物业名称,所属区域) values (202,'202','新城小区','朝阳区')
;;
-- housing unit sheet: owner by name and telephone
 SELECT 业主ID FROM fwyz where 业主名称='李秀英' and 电话='13900000002' and 类型=0
;;
-- housing unit sheet: add the typed owner
 INSERT INTO fwyz (业主ID,业主编号,业主名称,电话,性别,身份证号,工作单位,籍贯,备注,类型) values (402,'402','李秀英','13900000002','女','110101198002020022','第一中学','天津','',0)
;;
-- housing unit sheet: update the known owner's details
 update fwyz    set  性别='女',         身份证号='110101198002020022',         工作单位='第一中学',         籍贯='天津',         备注='教师'   where 业主ID=402
;;
-- housing unit sheet: owner details of a picked owner
 SELECT 业主ID,业主编号,业主名称,电话,备注,联系人电话,性别,身份证号,工作单位,籍贯   FROM fwyz  where 业主ID=402
;;
-- housing unit sheet: number unique among new units
 select  * from  fwfy where  房源编号 ='FY001'
;;
-- housing unit sheet: number unique among the other units
 Select  * From fwfy Where 房源ID <> 501 and 房源编号='FY001'
;;
-- housing unit sheet: insert a new unit
 INSERT INTO fwfy ( 装修程度,房源ID,出租状态,房源编号,物业ID,房源名称,所属区域,登记日期,物业用途,楼宇类型,朝向,户型,业务员ID,楼层,总楼层,建筑年份,结构,面积,架空层面积,车库面积,出租价格,出租说明,基础设施其他,配套设施其他,业主ID,具体地址,基础设施,配套设施 ) VALUES ('精装',501,'未出租','FY001',201,'阳光花园3-501','东城区',#2012-10-11#,'住宅','高层住宅','南','两室一厅',1,'5','18','2008','钢混',89.5,0,12,2500,'不养宠物','','',402,'东城区阳光路8号3栋501','燃气;宽带;','床;衣柜;空调;')
;;
-- housing unit sheet: update the unit
 UPDATE FWFY  SET 房源编号='FY001',装修程度='精装',物业ID=201,房源名称='阳光花园3-501',所属区域='东城区',登记日期=#2012-10-11#,物业用途='住宅',楼宇类型='高层住宅',出租状态='未出租',朝向='南',户型='两室一厅',业务员ID=1,楼层='5',总楼层='18',建筑年份='2008',结构='钢混',面积=89.5,架空层面积=0,车库面积=12,出租价格=2600,出租说明='不养宠物',基础设施其他='',配套设施其他='热水器',业主ID=402,具体地址='东城区阳光路8号3栋501',基础设施='燃气;宽带;',配套设施='床;衣柜;空调;'  WHERE 房源ID=501
;;
-- whole-unit housing sheet: insert a new unit without fit-out
 INSERT INTO fwfy ( 房源ID,出租状态,房源编号,物业ID,房源名称,所属区域,登记日期,物业用途,楼宇类型,朝向,户型,业务员ID,楼层,总楼层,建筑年份,结构,面积,架空层面积,车库面积,出租价格,出租说明,基础设施其他,配套设施其他,业主ID,具体地址,基础设施,配套设施 ) VALUES (503,'未出租','FY003',202,'新城小区1-101','朝阳区',#2012-10-11#,'住宅','多层住宅','南北','三室一厅',2,'1','6','2005','砖混',120,0,0,3200,'','','',402,'朝阳区新城路1号101','燃气;暖气;','')
;;
-- whole-unit housing sheet: update the unit without fit-out
 UPDATE FWFY  SET 房源编号='FY003',物业ID=202,房源名称='新城小区1-101',所属区域='朝阳区',登记日期=#2012-10-11#,物业用途='住宅',楼宇类型='多层住宅',出租状态='未出租',朝向='南北',户型='三室一厅',业务员ID=2,楼层='1',总楼层='6',建筑年份='2005',结构='砖混',面积=120,架空层面积=0,车库面积=0,出租价格=3200,出租说明='',基础设施其他='',配套设施其他='',业主ID=402,具体地址='朝阳区新城路1号101',基础设施='燃气;暖气;',配套设施=''  WHERE 房源ID=503
;;
-- housing unit sheet: last unit of the selection
select top 1 * from ( SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID) q where (1=1) order by 房源ID desc
;;
-- housing unit sheet: next unit under a filter
select top 1 * from ( SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID) q where (1=1 AND  房源编号 like'%FY%' and 出租状态='未出租') and (房源ID>0) order by 房源ID
;;
-- housing unit sheet: find a unit
select top 1 * from ( SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID) q where (1=1) and ( 房源名称 like'%阳光%' and 业主名称='李秀英') order by 房源ID
;;
-- housing unit sheet: find the next unit
select top 1 * from ( SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID) q where (1=1 and 房源ID=501) and ( 房源名称 like'%阳光%' AND 房源ID > 501) order by 房源ID
;;
-- housing unit sheet: reopen the unit shown
select top 1 * from ( SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID) q where (1=1) and ( 房源ID=501) order by 房源ID
;;
-- housing unit sheet: number of units in the selection
select count(*) from ( SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID) q where (1=1)
;;
-- housing unit sheet: position of the unit in the selection
select count(*) from ( SELECT FwFy.*, FwWy.物业名称, FwYz.业主名称, FwYz.电话, FwYz.备注 As 业主备注, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯, PDMXSY.名称 AS 业务员   FROM ((FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)     LEFT JOIN FwYz ON FwFy.业主ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID) q where (1=1) and (房源ID<=501)
;;
-- quick housing register: insert a new unit
insert into fwfy(房源ID,房源编号,房源名称,物业ID,楼宇ID,朝向,户型,楼层,结构,面积,出租状态,业主ID,备注)values(502,'FY002','一号楼1单元302',201,101,'南','两室一厅','3','钢混',76.4,'未出租',401,'朝南两居')
;;
-- quick housing register: update the unit
UpDate fwfy set 房源编号='FY002',房源名称='一号楼1单元302',物业ID=201,楼宇ID=101,朝向='南',户型='两室一厅',楼层='3',结构='钢混',面积=76.4,出租状态='未出租',业主ID=401,备注='朝南两居，新装修' Where 房源ID=502
;;
-- quick housing register: code unique among the other units
 Select 房源编号 From fwfy Where 房源编号='FY002' And 房源ID<>0
;;
-- quick housing register: name unique among the other units
 Select 房源名称 From fwfy Where 房源名称='一号楼1单元302' And 房源ID<>0
;;
-- quick housing register: list of all units
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID order by 房源编号
;;
-- quick housing register: reload one unit after the dialog saved it
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID where 房源ID=502
;;
-- quick housing register: load the unit into the dialog
select A.*,B.物业名称,C.楼宇名称,D.业主名称 from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID where 房源ID=502
;;
-- housing list picker: buildings of the combo box
select 楼宇ID,楼宇名称 from fwly order by 楼宇编号
;;
-- housing list picker: units of a building and a contract
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID where 1=1 and A.出租状态='未出租' and A.房源ID in(select 房源ID from fwhd where 合同ID=701) and A.楼宇ID=101 order by 房源编号
;;
-- housing list picker: typed unit checked
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,A.出租状态,D.业主名称,A.备注,A.房源ID from ((fwfy A left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID Where (房源编号='FY002' OR 房源名称='FY002') and 楼宇名称='一号楼' and A.出租状态='未出租'
;;
-- rooms of a unit: insert a new room
 insert into fwfy_fz   ( autoid,房源ID,房间号,面积,月租金,是否出租 ) values (601,501,'A',20.5,900,0)
;;
-- rooms of a unit: update a room
 update fwfy_fz   set 房间号='A',       面积=21,       月租金=950  where autoid=601
;;
-- rooms of a unit: drop the rooms taken out of the grid
Delete from fwfy_fz Where AutoID in(602,603)
;;
-- rooms of a unit: rooms with the contracts that let them
 select fwfy_fz.房间号,fwfy_fz.面积,fwfy_fz.月租金,fwfy_fz.是否出租,t.合同编号 As 租房合同号,t.起租日期,t.止租日期,t.付租方式,fwfy_fz.AutoID    from FwFy_Fz left join (       select fwhdmx.房源ID,fwhd.分租房间,合同编号,起租日期,止租日期,付租方式         from FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID where fwhd.状态='生效' ) t     on fwfy_fz.房源ID=t.房源ID and fwfy_fz.房间号=t.分租房间   where fwfy_fz.房源ID=501
;;
-- rooms of a unit: whole-unit contracts in force
 select fwhdmx.房源ID,fwhd.分租房间,合同编号,起租日期,止租日期,付租方式    from FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID   where fwhd.状态='生效' and 分租房间='' and 房源ID=501
;;
-- housing list: units under every condition
 SELECT FwFy.房源ID, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, FwFy.所属区域, FwFy.楼宇类型, FwFy.物业用途,       FwFy.户型, FwFy.面积, FwFy.楼层, FwFy.总楼层, PDMXSY.名称 As 业务员, FwFy.出租价格, FwFy.出租状态  FROM (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID WHERE 1=1 and FwFy.所属区域='东城区' and FwWy.物业名称='阳光花园' and FwFy.户型='两室一厅' and FwFy.物业用途='住宅' and FwFy.楼宇类型='高层住宅' and FwFy.出租价格 >=1000 and FwFy.出租价格 <=3000.5 and FwFy.面积 >=50 and FwFy.面积 <=120 and fwfy.业务员ID=1 and ( FwFy.出租状态='未出租' or  FwFy.出租状态='已出租' or  FwFy.出租状态='部分出租' or fwfy.出租状态='已分租' or  FwFy.出租状态='已失效')
;;
-- housing list: no rental state ticked
 SELECT FwFy.房源ID, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, FwFy.所属区域, FwFy.楼宇类型, FwFy.物业用途,       FwFy.户型, FwFy.面积, FwFy.楼层, FwFy.总楼层, PDMXSY.名称 As 业务员, FwFy.出租价格, FwFy.出租状态  FROM (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) LEFT JOIN PDMXSY ON FwFy.业务员ID = PDMXSY.AutoID WHERE 1=1 and 1<>1
;;
-- housing picker: units free for a new contract
 SELECT fwfy.房源ID,FwFy.房源编号,fwwy.物业名称,FwFy.房源名称,FwFy.户型,FwFy.面积,FwFy.出租状态   FROM FwFy left join fwwy on FwFy.物业ID=fwwy.物业ID  WHERE  1=1 and fwwy.物业名称='阳光花园' and fwfy.户型='两室一厅' and fwfy.出租状态 in ('未出租','部分出租')   ORDER BY FwFy.房源编号
;;
-- housing picker: units of one rental state
 SELECT fwfy.房源ID,FwFy.房源编号,fwwy.物业名称,FwFy.房源名称,FwFy.户型,FwFy.面积,FwFy.出租状态   FROM FwFy left join fwwy on FwFy.物业ID=fwwy.物业ID  WHERE  1=1 and fwfy.出租状态='已失效'   ORDER BY FwFy.房源编号
;;
-- housing picker: typed unit number checked
 SELECT fwfy.房源ID,FwFy.房源编号,fwwy.物业名称,FwFy.房源名称,FwFy.户型,FwFy.面积,FwFy.出租状态   FROM FwFy left join fwwy on FwFy.物业ID=fwwy.物业ID  WHERE  1=1 and fwfy.出租状态 in ('未出租','部分出租')  AND ( FwFy.房源名称 like 'FY0%' OR FwFy.房源编号 Like 'FY0%' )
;;
-- unit validity tools: contract in force on the unit
 SELECT 房源ID FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID  where fwhdmx.房源ID=501 and smark='02' and 状态='生效'
;;
-- set unit invalid: unit already invalid
 select 房源ID from fwfy where 房源ID=501 and 出租状态='已失效'
;;
-- set unit invalid: mark the unit
 update fwfy   set 出租状态='已失效'  where 房源ID=501
;;
-- cancel unit invalid: unit not invalid
 select 房源ID from fwfy where 房源ID=501 and 出租状态<>'已失效'
;;
-- contract sheet: last contract of the months shown
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870201 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#) order by 合同ID desc
;;
-- contract sheet: next contract under a filter
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870201 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01# AND  合同编号 like '%HT%'  and 状态='生效') and (合同ID>0) order by 合同ID
;;
-- contract sheet: find a contract by number and date
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870201 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#) and ( 合同编号 like '%HT%'  and 合同日期>=#2012-01-01#  and 业主名称='赵小明') order by 合同ID
;;
-- contract sheet: find the next contract
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870201 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#) and ( 合同编号 like '%HT%'  AND 合同ID > 701) order by 合同ID
;;
-- contract sheet: reopen the contract it was opened on
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870201 and 合同ID=701) and ( 合同ID=701) order by 合同ID
;;
-- contract sheet: number of contracts of the months shown
select count(*) from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870201 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#)
;;
-- contract sheet: position of the contract shown
select count(*) from ( SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870201 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#) and (合同ID<=701)
;;
-- contract sheet: picked housing unit with its estate
 SELECT FwFy.房源ID, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型, FwFy.面积, FwFy.装修程度, FwFy.具体地址,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他,fwfy.出租价格   FROM FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID  where fwfy.房源ID=501
;;
-- contract sheet: free rooms list of the picked unit
 Select 房间号 From fwfy_fz where 房源ID=501 and 是否出租=0 and ( 房间号='A') order by  房间号
;;
-- contract sheet: months and deposit of a payment mode
 SELECT 付租月份,押金月份   FROM pdmfzfs  where 付租方式='押一付三'
;;
-- contract sheet: area and rent of the picked room
 SELECT 面积,月租金   FROM fwfy_fz  where 房间号='A' and 房源id=501
;;
-- contract sheet: area and rent of the whole unit
 select 面积,出租价格 from fwfy where 房源ID=501
;;
-- contract sheet: print data of the unit
 SELECT 楼层,房源名称,楼宇类型 from fwfy where 房源ID=501
;;
-- contract save: number unique among new contracts
 select  * from  fwhd where  合同编号 ='HT2012-001' and progid =870201
;;
-- contract save: number unique among the other contracts
 Select  * From fwhd Where 合同ID <> 701 and progid =870201 and 合同编号='HT2012-001'
;;
-- contract save: insert the tenant typed on the sheet
 INSERT INTO fwyz (业主ID,业主编号,业主名称,电话,性别,身份证号,工作单位,籍贯,备注,类型) values (403,'403','赵小明','13700000003','男','110101199003030033','软件园','河北','',1)
;;
-- contract save: insert the contract
 Insert into fwhd(合同ID,progid,smark,系统,状态,合同编号,合同日期,业务员ID,预收押金,中介费,客户ID,租住人数,押金备注1,押金备注2,押金备注3,起租日期,止租日期,租赁期,收款期间,月租金,付租方式,分租房间,面积,备注,制单人,制单日期) VALUES (701,870201,'01','填单','未生效','HT2012-001',#2012-10-11#,1,2500,500,403,2,'押一个月房租','','',#2012-10-15#,#2013-10-14#,12,3,2500,'押一付三','',89.5,'可养小型犬','张三',#2012-10-11#)
;;
-- contract save: insert the contract's unit
 Insert into fwhdmx(合同明细ID,合同ID,基础设施,配套设施,房源ID) values (801,701,'燃气;宽带;','床;衣柜;空调;',501)
;;
-- contract save: update the contract
 UPDATE fwhd  SET 合同编号='HT2012-001',      合同日期=#2012-10-11#,      业务员ID=1,      预收押金=2500,      中介费=500,      客户ID=403,      租住人数=2,      押金备注1='押一个月房租',      押金备注2='',      押金备注3='',      起租日期=#2012-10-15#,      止租日期=#2013-10-14#,      租赁期=12,      收款期间=3,      月租金=2500,      付租方式='押一付三',      分租房间='',      面积=89.5,      备注='可养小型犬',      制单人='张三',      制单日期=#2012-10-11# WHERE 合同ID=701
;;
-- contract save: update the contract's unit
 update fwhdmx set 房源ID=501,     基础设施='燃气;宽带;',     配套设施='床;衣柜;空调;' where 合同ID=701
;;
-- contract save: drop the fee terms taken out of the grid
Delete from fwhdfs Where 合同明细ID in(903,904)
;;
-- contract save: insert a fee term
 INSERT INTO fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,序号 ) VALUES (901,701,'房租',1,2500,1,0,0,3,1)
;;
-- contract save: update a fee term
 UPDATE fwhdfs   SET 费用名称='水费',       是否包干=0,       包干价=0,       是否预收=0,       度数=356,       单价=3.2,       收款期间=3,       序号=2 WHERE 合同明细ID=902
;;
-- contract sheet: fee terms of the contract
 SELECT 费用名称,是否包干,包干价,是否预收,度数,单价,收款期间,合同明细ID FROM fwhdfs WHERE 合同ID=701 order by 序号
;;
-- contract approval: unit withdrawn
 select 出租状态 from fwfy where 房源ID=501
;;
-- contract approval: mark the contract approved
 Update fwhd Set progID=870201,smark='02', 状态='生效', 审核人='张三', 审核日期=#2012-10-11#, 系统='审核' Where 合同ID=701
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
-- rental state: room held by a contract in force
 SELECT 房源ID FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID  where fwhdmx.房源ID=501 and 分租房间='A'    and smark='02' and 状态='生效'
;;
-- rental state: mark the room let
 UPDATE fwfy_fz   set 是否出租=1  where 房源ID=501 and 房间号='A'
;;
-- rental state: rooms of the unit
 select 是否出租 from fwfy_fz where 房源ID=501
;;
-- rental state: write the unit's state
 UPDATE fwfy     SET 出租状态='已出租'   WHERE 房源ID=501
;;
-- contract picker: approved contracts in force
 SELECT fwhd.合同ID, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID   where fwhd.smark='02' and fwwy.物业名称='阳光花园' and fwfy.户型='两室一厅' and fwhd.状态='生效'   ORDER BY Fwhd.合同编号
;;
-- contract picker: typed contract number checked
 SELECT fwhd.合同ID, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID   where fwhd.smark='02' and fwhd.状态='生效'  AND ( Fwhd.合同编号 like 'HT2012%' OR FwFy.房源编号 Like 'HT2012%' )
;;
-- end contract: approval mark of the contract
select smark from fwhd where 合同ID=701
;;
-- end contract: contract already ended
 select 合同ID from fwhd where 合同ID=701 and 状态='终止'
;;
-- end contract: unit of the contract
 SELECT 房源ID FROM fwhdmx where 合同ID=701
;;
-- end contract: room of the contract
 SELECT 分租房间 FROM fwhd where 合同ID=701
;;
-- end contract: set the contract ended
 update fwhd   set 状态='终止'  where 合同ID=701
;;
-- end contract undone: contract not ended
 select 合同ID from fwhd where 合同ID=701 and 状态<>'终止'
;;
-- contract document export: contract with tenant and unit
 SELECT FwHd.*, FwHdMx.房源ID, PDMgy.姓名 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址,fwfy.面积,        Fwhdmx.基础设施, Fwhdmx.配套设施   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMGY ON FwHd.业务员ID = PDMgy.雇员ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID  WHERE fwhd.合同ID=701
;;
-- contract document export: starting meter reading of a fee
SELECT 度数 FROM FwHdFs where 合同ID=701 and 费用名称='水费'
;;
-- fixed-fee contract sheet: insert the contract
 Insert into fwhd(合同ID,progid,smark,系统,合同编号,合同日期,业务员ID,预收押金,中介费,客户ID,租住人数,押金备注1,押金备注2,押金备注3,起租日期,止租日期,租赁期,收款期间,月租金,备注,制单人,制单日期) VALUES (702,870202,'01','填单','BG2012-001',#2012-10-11#,2,1800,0,403,1,'','','',#2012-03-15#,#2013-03-14#,12,3,1800,'','张三',#2012-10-11#)
;;
-- fixed-fee contract sheet: insert the contract's unit
 Insert into fwhdmx(合同明细ID,合同ID,房源ID) values (802,702,502)
;;
-- fixed-fee contract sheet: insert the rent fee
 insert into fwhdfs (合同明细ID,合同ID,费用名称,包干价,是否预收) values (911,702,'房租',1800,1)
;;
-- fixed-fee contract sheet: insert a metered or flat fee
 insert into fwhdfs (合同明细ID,合同ID,费用名称,是否包干,包干价,是否预收,度数,单价) values (912,702,'电费',0,0,1,3560,0.56)
;;
-- fixed-fee contract sheet: insert the gas fee
 insert into fwhdfs (合同明细ID,合同ID,费用名称,度数,单价) values (914,702,'煤气费',120,2.5)
;;
-- fixed-fee contract sheet: update the contract
 UPDATE fwhd  SET 合同编号='BG2012-001',      合同日期=#2012-10-11#,      业务员ID=2,      预收押金=1800,      中介费=0,      客户ID=403,      租住人数=1,      押金备注1='',      押金备注2='',      押金备注3='',      起租日期=#2012-03-15#,      止租日期=#2013-03-14#,      租赁期=12,      收款期间=3,      月租金=1800,      备注='',      制单人='张三',      制单日期=#2012-10-11# WHERE 合同ID=702
;;
-- fixed-fee contract sheet: update the contract's unit
 update fwhdmx set 房源ID=502 where 合同ID=702
;;
-- fixed-fee contract sheet: update the rent fee
 update fwhdfs set 包干价=1800,是否预收=1 where 合同ID=702 and 费用名称='房租'
;;
-- fixed-fee contract sheet: update a metered or flat fee
 update fwhdfs set 是否包干=0,包干价=0,是否预收=1,度数=3560,单价=0.56 where 合同ID=702 and 费用名称='电费'
;;
-- fixed-fee contract sheet: update the gas fee
 update fwhdfs set 度数=120,单价=2.5 where 合同ID=702 and 费用名称='煤气费'
;;
-- fixed-fee contract sheet: rent fee of the contract
 SELECT 包干价,是否预收 FROM fwhdfs where 合同ID=702 and 费用名称='房租'
;;
-- fixed-fee contract sheet: electricity fee of the contract
 SELECT 是否包干,包干价,是否预收,度数,单价 FROM fwhdfs where 合同ID=702 and 费用名称='电费'
;;
-- fixed-fee contract sheet: gas fee of the contract
 SELECT 度数,单价 FROM fwhdfs where 合同ID=702 and 费用名称='煤气费'
;;
-- fixed-fee contract approval: next collection date
 update fwhd set 下次收款时间=#2012-03-15#,     下次收款时间1=#2012-03-15# Where 合同ID=702
;;
-- fixed-fee contract sheet: last contract of the months shown
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMXSY.名称 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址, FwFy.面积,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870202 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#) order by 合同ID desc
;;
-- fixed-fee contract sheet: next contract under a filter
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMXSY.名称 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址, FwFy.面积,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870202 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01# AND  业务员 like '%王%' ) and (合同ID>702) order by 合同ID
;;
-- fixed-fee contract sheet: find a contract
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMXSY.名称 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址, FwFy.面积,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870202 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#) and ( 房源编号 like '%FY%'  and 起租日期<=#2012-12-31#) order by 合同ID
;;
-- fixed-fee contract sheet: reopen the contract shown
select top 1 * from ( SELECT FwHd.*, FwHdMx.房源ID, PDMXSY.名称 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址, FwFy.面积,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870202 and 合同ID=702) and ( 合同ID=702) order by 合同ID
;;
-- fixed-fee contract sheet: number of contracts of the months shown
select count(*) from ( SELECT FwHd.*, FwHdMx.房源ID, PDMXSY.名称 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址, FwFy.面积,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870202 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#)
;;
-- fixed-fee contract sheet: position of the contract shown
select count(*) from ( SELECT FwHd.*, FwHdMx.房源ID, PDMXSY.名称 AS 业务员, FwYz.业主名称, FwYz.电话, FwYz.性别, FwYz.身份证号, FwYz.工作单位, FwYz.籍贯,        FwYz.备注 As 客户备注, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称, FwFy.户型,  FwFy.装修程度, FwFy.具体地址, FwFy.面积,        FwFy.基础设施, FwFy.基础设施其他, FwFy.配套设施, FwFy.配套设施其他   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) q where (progid=870202 and 合同日期>=#2011-10-01# and 合同日期<#2012-11-01#) and (合同ID<=702)
;;
-- simple contract sheet: number unique among new contracts
 select Top 1 合同ID from  fwhd where  合同编号 ='JY2012-001'and progid =870203
;;
-- simple contract sheet: number unique among the other contracts
 Select Top 1 合同ID From fwhd Where 合同ID <> 703 and progid =870203 and 合同编号='JY2012-001'
;;
-- simple contract sheet: insert the contract
 InSert Into fwhd(合同编号,合同日期,客户ID,起租日期,止租日期,租赁期,月租金,总金额,备注,progID,合同ID,填单人,填单日期,系统,smark) Values ('JY2012-001',#2012-10-11#,403,#2012-11-01#,#2013-10-31#,12,3000,36000,'整租两套',870203,703,'张三',#2012-10-11#,'填单','01')
;;
-- simple contract sheet: update the contract
 Update fwhd Set 合同编号='JY2012-001',合同日期=#2012-10-11#,客户ID=403,起租日期=#2012-11-01#,止租日期=#2013-10-31#,租赁期=12,月租金=3000,总金额=36000,备注='整租两套',progID=870203,填单人='张三',填单日期=#2012-10-11#,系统='填单',smark='01' Where 合同ID=703
;;
-- simple contract sheet: drop the units taken out of the grid
Delete from fwhdmx Where 合同明细ID in(805)
;;
-- simple contract sheet: insert a unit of the contract
 InSert Into fwhdmx(合同ID,合同明细ID,房源ID,备注) Values (703,803,502,'含车位')
;;
-- simple contract sheet: update a unit of the contract
 Update fwhdmx Set 合同ID=703,房源ID=502,备注='含车位一个' Where 合同明细ID=803
;;
-- simple contract sheet: units of the contract
select A.房源编号,A.房源名称,B.物业名称,C.楼宇名称,A.朝向,A.户型,A.楼层,A.结构,A.面积,D.业主名称,S.房源ID,S.备注,S.合同明细ID from (((fwhdmx S left join fwfy A on S.房源ID=A.房源ID) left join fwwy B on A.物业ID=B.物业ID) left join fwly C on A.楼宇ID=C.楼宇ID) left join fwyz D on A.业主ID=D.业主ID where 合同ID=703 order by 合同明细ID
;;
-- simple contract approval: contract already in the aimed state
 SELECT sMark FROM fwhd WHERE 合同ID=703 And smark=02
;;
-- simple contract approval: a unit of the contract already let
select top 1 房源编号+' '+房源名称 from fwfy where 出租状态='已出租' and 房源ID in(select 房源ID from fwhdmx where 合同ID=703)
;;
-- simple contract approval: mark the contract approved
 Update fwhd  Set progID=870203, smark='02', 审核人='张三', 审核日期=#2012-10-11#, 状态='生效', 系统='审核' Where 合同ID=703
;;
-- simple contract approval: let all units of the contract
 update fwfy set 出租状态='已出租' where 房源ID in(select 房源ID from fwhdmx where 合同ID=703)
;;
-- simple contract un-approval: contract ended or completed
 SELECT 状态 FROM fwhd WHERE 合同ID=703 and (状态='终止' or 状态='完成')
;;
-- simple contract un-approval: payments booked against the contract
 SELECT top 1 合同ID FROM fwhd_js WHERE 合同ID=703
;;
-- simple contract sheet: last contract of the function
select top 1 * from (select A.*,B.业主名称 as 客户 from fwhd A left join fwyz B on A.客户ID=B.业主ID) q where (progid=870203) order by 合同ID desc
;;
-- simple contract sheet: next contract under a filter
select top 1 * from (select A.*,B.业主名称 as 客户 from fwhd A left join fwyz B on A.客户ID=B.业主ID) q where (progid=870203 AND  客户 like '%赵%' ) and (合同ID>703) order by 合同ID
;;
-- simple contract sheet: find a contract
select top 1 * from (select A.*,B.业主名称 as 客户 from fwhd A left join fwyz B on A.客户ID=B.业主ID) q where (progid=870203) and ( 合同编号 like '%JY%'  and 止租日期<=#2013-12-31#) order by 合同ID
;;
-- simple contract sheet: reopen the contract shown
select top 1 * from (select A.*,B.业主名称 as 客户 from fwhd A left join fwyz B on A.客户ID=B.业主ID) q where (progid=870203 and 合同ID=703) and (合同ID=703) order by 合同ID
;;
-- simple contract sheet: number of contracts of the function
select count(*) from (select A.*,B.业主名称 as 客户 from fwhd A left join fwyz B on A.客户ID=B.业主ID) q where (progid=870203)
;;
-- simple contract sheet: position of the contract shown
select count(*) from (select A.*,B.业主名称 as 客户 from fwhd A left join fwyz B on A.客户ID=B.业主ID) q where (progid=870203) and (合同ID<=703)
;;
-- contract search dialog: name of the client given
select 业主名称 from fwyz where 业主ID=403
;;
-- contract search dialog: contracts in force, at most a number of rows
select top 100 合同编号,合同日期,业主名称 as 客户,起租日期,止租日期,租赁期,月租金,总金额,A.备注,合同ID,A.客户ID from fwhd A left join fwyz B on A.客户ID=B.业主ID where smark='02' and 状态='生效' and 起租日期>=#2012-01-01# and 起租日期<=#2012-12-31# and 止租日期>=#2013-01-01# and 止租日期<=#2013-12-31# and A.客户ID=403 order by 合同日期,合同编号
;;
-- contract search dialog: all contracts in force
select 合同编号,合同日期,业主名称 as 客户,起租日期,止租日期,租赁期,月租金,总金额,A.备注,合同ID,A.客户ID from fwhd A left join fwyz B on A.客户ID=B.业主ID where smark='02' and 状态='生效' order by 合同日期,合同编号
;;
-- receipt sheet: number unique among new receipts
 select  * from  fwjs where  单据编号 ='SK2012-001' and progid =870301
;;
-- receipt sheet: number unique among the other receipts
 Select  * From fwjs Where 单据ID <> 1201 and progid =870301 and 单据编号='SK2012-001'
;;
-- receipt sheet: contract picked for the receipt
 SELECT 客户ID,FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源ID, FwFy.房源名称, FwWy.物业名称, FwFy.具体地址,        FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.付租方式,fwhd.分租房间   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID  WHERE fwhd.合同ID=701
;;
-- receipt sheet: earliest open due date of the contract
 SELECT min(收款日期) from fwhdfs_sk where 合同ID=701 and 是否已收=0
;;
-- receipt sheet: charges falling due on that date
 SELECT fwhdfs_sk.*,fwhdfs.包干价,fwhdfs.单价        from fwhdfs_sk inner join fwhdfs on fwhdfs_sk.合同ID=fwhdfs.合同ID and fwhdfs_sk.费用名称=fwhdfs.费用名称   where fwhdfs_sk.合同ID=701 and fwhdfs_sk.是否已收=0 and fwhdfs_sk.收款日期=#2012-10-15# order by fwhdfs_sk.序号
;;
-- receipt save: insert the receipt
 insert into fwjs (单据ID,progid,smark,系统,是否最后一期,押金,单据编号,操作日期,合同ID,客户ID,合计金额,实收金额,欠收金额,备注,房源ID,业务员ID,制单人,制单日期 ) values (1201,870301,'01','填单',0,2500,'SK2012-001',#2012-10-15#,701,403,10000,9800.5,199.5,'首期房租和押金',501,1,'张三',#2012-10-11#)
;;
-- receipt save: update the receipt
 update fwjs   set 单据编号='SK2012-001',        操作日期=#2012-10-15#,        是否最后一期=0,        押金=2500,        合同ID=701,        客户ID=403,        合计金额=10000,        实收金额=10000,        欠收金额=0,        备注='首期房租和押金',        房源ID=501,        业务员ID=1,        制单人='张三',        制单日期=#2012-10-11# where 单据ID=1201
;;
-- receipt save: drop the lines of an earlier drawing
Delete from fwjsmx Where 单据明细ID in(1305,1306)
;;
-- receipt save: insert a line
 INSERT INTO fwjsmx (单据明细ID,单据ID,前置单据ID,费用名称,是否包干,是否预收,收款期间,序号,收款日期,开始日期,结束日期,包干价,上期读数,本次读数,实际用量,单价,其他金额,总包干额,总用量额 ) values (1301,1201,1101,'房租',1,1,3,1,'2012-10-15','2012-10-15','2013-01-14',2500,0,0,0,0,0,7500,0)
;;
-- receipt save: update a line
 UPDATE fwjsmx  SET  费用名称='房租',       前置单据ID=1101,       是否包干=1,       是否预收=1,       收款期间=3,       序号=1,       收款日期='2012-10-15',       开始日期='2012-10-15',       结束日期='2013-01-14',       包干价=2500,       上期读数=0,       本次读数=0,       实际用量=0,       单价=0,       其他金额=0,       总包干额=7500,       总用量额=0 where 单据明细ID=1301
;;
-- receipt sheet: lines of the receipt
 SELECT * from fwjsmx where 单据ID=1201 order by 序号
;;
-- receipt sheet: print data of the tenant
 SELECT FwHd.租住人数, FwYz.身份证号, FwYz.籍贯   FROM FwHd INNER JOIN FwYz ON FwHd.客户ID = FwYz.业主ID  where fwhd.合同ID=701
;;
-- receipt sheet: last receipt of the months shown
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.付租方式,fwhd.分租房间, PDMgy.姓名 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID ) q where (progid=870301 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#) order by 单据ID desc
;;
-- receipt sheet: next receipt under a filter
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.付租方式,fwhd.分租房间, PDMgy.姓名 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID ) q where (progid=870301 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01# AND  物业名称 like '%阳光%'  and 实收金额>='1000') and (单据ID>1201) order by 单据ID
;;
-- receipt sheet: find a receipt
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, FwHd.付租方式,fwhd.分租房间, PDMgy.姓名 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID ) q where (progid=870301 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#) and ( 单据编号 like '%SK%'  and 操作日期>=#2012-10-01#) order by 单据ID
;;
-- receipt sheet: reopen the receipt shown
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, FwHd.付租方式,fwhd.分租房间, PDMgy.姓名 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID ) q where (progid=870301 and 单据ID=1201) and ( 单据ID=1201) order by 单据ID
;;
-- receipt sheet: number of receipts of the months shown
select count(*) from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.付租方式,fwhd.分租房间, PDMgy.姓名 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID ) q where (progid=870301 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#)
;;
-- receipt sheet: position of the receipt shown
select count(*) from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.付租方式,fwhd.分租房间, PDMgy.姓名 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID ) q where (progid=870301 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#) and (单据ID<=1201)
;;
-- receipt approval: contract ended
 select 状态 from fwhd where 合同ID=701
;;
-- receipt approval: mark the receipt approved
 Update fwjs Set progID=870301,smark='02', 审核人='张三', 审核日期=#2012-10-11#, 系统='审核' Where 单据ID=1201
;;
-- receipt approval: schedule row already collected
 select autoid from fwhdfs_sk where AutoID=1101 and 是否已收=1
;;
-- receipt approval: mark the schedule row collected
 update fwhdfs_sk    set 是否已收=1  where autoid=1101
;;
-- receipt approval: next period of a metered fee
 select top 1 autoid from fwhdfs_sk where 合同ID=701 and 费用名称='水费' AND 收款日期>#2013-01-14# order by 收款日期
;;
-- receipt approval: hand the reading on to the next period
 update fwhdfs_sk   set  上期度数=356.5   where autoid=1102
;;
-- receipt approval: rows of the contract left to collect
 SELECT 合同ID FROM fwhdfs_sk WHERE 合同ID=701 and 是否已收=0
;;
-- receipt approval: end date of the contract
 SELECT 止租日期 from fwhd where 合同ID=701
;;
-- fixed-fee receipt sheet: contract picked for the receipt
 SELECT 客户ID,FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源ID, FwFy.房源名称, FwWy.物业名称, FwFy.具体地址,        FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间   FROM (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID  WHERE fwhd.合同ID=702
;;
-- fixed-fee receipt sheet: fee term of one fee
 SELECT * from fwhdfs where 合同ID=702 and 费用名称='房租'
;;
-- fixed-fee receipt sheet: end of the last period collected
 SELECT max(结束日期) from fwjsmx inner join fwjs on fwjsmx.单据ID=fwjs.单据ID where fwjs.合同ID=702 and fwjs.单据ID <>1202 and 费用名称='租金'
;;
-- fixed-fee receipt sheet: highest meter reading collected
 SELECT max(本次读数) from fwjsmx inner join fwjs on fwjsmx.单据ID=fwjs.单据ID where fwjs.合同ID=702 and fwjs.单据ID <>1202 and 费用名称='电费'
;;
-- fixed-fee receipt sheet: deposit to pay back
 select 预收押金 from fwhd where 合同ID=702
;;
-- fixed-fee receipt sheet: line of one fee
 SELECT 单据明细ID from fwjsmx where 单据ID=1202 and 费用名称='租金'
;;
-- fixed-fee receipt save: insert a fee line
 insert into fwjsmx ( 单据明细ID,单据ID,费用名称,是否包干,开始日期,结束日期,包干价,是否预收,总包干额,上期读数,本次读数,实际用量,单价,其他金额,总用量额,备注) values (1302,1202,'租金',1,#2012-03-15#,#2012-06-14#,1800,1,5400,0,0,0,0,0,0,'')
;;
-- fixed-fee receipt save: update a fee line
 update fwjsmx   set 是否包干=1,       开始日期=#2012-03-15#,       结束日期=#2012-06-14#,       包干价=1800,       是否预收=1,       总包干额=5400,       上期读数=0,       本次读数=0,       实际用量=0,       单价=0,       其他金额=0,       总用量额=0,       备注='' where 单据明细ID=1302
;;
-- fixed-fee receipt sheet: fee line of the receipt
 SELECT * from fwjsmx where 单据ID=1202 and 费用名称='租金'
;;
-- fixed-fee receipt approval: approved receipt of the last period
 SELECT 合同ID FROM fwjs WHERE smark='02' and fwjs.合同ID=702 and 是否最后一期=1
;;
-- fixed-fee receipt approval: end of the fees collected in advance
 SELECT MAX(结束日期) FROM fwjsmx inner join fwjs on fwjsmx.单据ID=fwjs.单据ID where fwjsmx.是否包干=1 and fwjsmx.是否预收=1 and fwjs.smark='02' and fwjs.合同ID=702
;;
-- fixed-fee receipt approval: next collection date back to the first
 update fwhd set 下次收款时间=下次收款时间1 Where 合同ID=702
;;
-- fixed-fee receipt approval: next collection date
 update fwhd set 下次收款时间=#2012-06-15# Where 合同ID=702
;;
-- fixed-fee receipt approval: room of a contract in force on the unit
 SELECT 分租房间 FROM fwhd inner join fwhdmx on fwhd.合同ID=fwhdmx.合同ID  where fwhdmx.房源ID=502 and smark='02' and 状态='生效'
;;
-- fixed-fee receipt un-approval: later collection in the accounts module
 SELECT 源单ID from arpreceive inner join arpreceivemx on arpreceive.单据ID=arpreceivemx.单据ID where  arpreceivemx.源单ID=1202
;;
-- fixed-fee receipt sheet: last receipt of the months shown
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, PDMXSY.名称 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMXSY ON FwJs.业务员ID = PDMXSY.AutoID ) q where (progid=870302 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#) order by 单据ID desc
;;
-- fixed-fee receipt sheet: next receipt under a filter
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, PDMXSY.名称 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMXSY ON FwJs.业务员ID = PDMXSY.AutoID ) q where (progid=870302 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01# AND  业主名称 like '%赵%' ) and (单据ID>1202) order by 单据ID
;;
-- fixed-fee receipt sheet: find a receipt
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, PDMXSY.名称 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMXSY ON FwJs.业务员ID = PDMXSY.AutoID ) q where (progid=870302 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#) and ( 合同编号 like '%BG%'  and 操作日期<=#2012-10-31#) order by 单据ID
;;
-- fixed-fee receipt sheet: reopen the receipt shown
select top 1 * from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, PDMXSY.名称 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMXSY ON FwJs.业务员ID = PDMXSY.AutoID ) q where (progid=870302 and 单据ID=1202) and ( 单据ID=1202) order by 单据ID
;;
-- fixed-fee receipt sheet: number of receipts of the months shown
select count(*) from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, PDMXSY.名称 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMXSY ON FwJs.业务员ID = PDMXSY.AutoID ) q where (progid=870302 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#)
;;
-- fixed-fee receipt sheet: position of the receipt shown
select count(*) from ( SELECT FwJs.*, FwHd.合同编号, FwYz.业主名称, FwYz.电话, FwFy.房源编号, FwFy.房源名称, FwWy.物业名称,       FwFy.具体地址, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.收款期间, PDMXSY.名称 AS 业务员  FROM (((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)    LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID)    LEFT JOIN (FwFy LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID) ON FwJs.房源ID = FwFy.房源ID)    LEFT JOIN PDMXSY ON FwJs.业务员ID = PDMXSY.AutoID ) q where (progid=870302 and 操作日期>=#2011-10-01# and 操作日期<#2012-11-01#) and (单据ID<=1202)
;;
-- deposit receipt: typed contract number of a contract in force
select A.*,B.业主名称 as 客户名称 from fwhd A left join fwyz B on A.客户ID=B.业主ID where smark='02' and 状态='生效' and 合同编号='JY2012-001'
;;
-- deposit receipt: number unique among new receipts
 select Top 1 单据ID from  fwjs where  单据编号 ='YJ2012-001'and progid =870304
;;
-- deposit receipt: number unique among the other receipts
 Select Top 1 单据ID From fwjs Where 单据ID <> 1204 and progid =870304 and 单据编号='YJ2012-001'
;;
-- deposit receipt: insert the receipt
 InSert Into fwjs(单据编号,操作日期,合同ID,客户ID,发票号码,摘要,金额,经手人,备注,progID,单据ID,填单人,填单日期,系统,smark) Values ('YJ2012-001',#2012-10-11#,703,403,'FP0001','押金',6000,'李四','',870304,1204,'张三',#2012-10-11#,'填单','01')
;;
-- deposit receipt: update the receipt
 Update fwjs Set 单据编号='YJ2012-001',操作日期=#2012-10-11#,合同ID=703,客户ID=403,发票号码='FP0001',摘要='押金两个月',金额=6000,经手人='李四',备注='',progID=870304,填单人='张三',填单日期=#2012-10-11#,系统='填单',smark='01' Where 单据ID=1204
;;
-- deposit receipt approval: receipt already in the aimed state
 SELECT sMark FROM fwjs WHERE 单据ID=1204 And smark=02
;;
-- deposit receipt approval: contract of the receipt
 SELECT 合同ID,smark,状态,起租日期,止租日期,总金额 FROM fwhd WHERE 合同ID in(select 合同ID from fwjs where 单据ID=1204)
;;
-- deposit receipt approval: book the deposit against the contract
insert into fwhd_js(合同ID,起租日期,止租日期,总租金额,结算ID,金额,摘要)values(703,#2012-11-01#,#2013-10-31#,36000,1204,6000,'押金两个月')
;;
-- deposit receipt un-approval: take the deposit back off the contract
 delete from fwhd_js where 结算ID=1204
;;
-- deposit receipt: last receipt of the function
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号 from (fwjs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) q where (progid=870304) order by 单据ID desc
;;
-- deposit receipt: next receipt under a filter
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号 from (fwjs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) q where (progid=870304 AND  客户 like '%赵%' ) and (单据ID>1204) order by 单据ID
;;
-- deposit receipt: find a receipt
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号 from (fwjs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) q where (progid=870304) and ( 摘要 like '%押金%'  and 操作日期>=#2012-10-01#) order by 单据ID
;;
-- deposit receipt: reopen the receipt shown
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号 from (fwjs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) q where (progid=870304 and 单据ID=1204) and (单据ID=1204) order by 单据ID
;;
-- deposit receipt: number of receipts of the function
select count(*) from (select A.*,B.业主名称 as 客户,C.合同编号 from (fwjs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) q where (progid=870304)
;;
-- deposit receipt: position of the receipt shown
select count(*) from (select A.*,B.业主名称 as 客户,C.合同编号 from (fwjs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) q where (progid=870304) and (单据ID<=1204)
;;
-- rent receipt by account: insert the receipt
 InSert Into fwjs(单据编号,操作日期,合同ID,客户ID,发票号码,经手人,备注,progID,单据ID,填单人,填单日期,系统,smark) Values ('ZJ2012-001',#2012-11-01#,703,403,'FP0002','李四','',870303,1203,'张三',#2012-10-11#,'填单','01')
;;
-- rent receipt by account: update the receipt
 Update fwjs Set 单据编号='ZJ2012-001',操作日期=#2012-11-01#,合同ID=703,客户ID=403,发票号码='FP0002',经手人='李四',备注='十一月',progID=870303,填单人='张三',填单日期=#2012-10-11#,系统='填单',smark='01' Where 单据ID=1203
;;
-- rent receipt by account: insert a line with its period
 InSert Into fwjsmx(单据ID,单据明细ID,科目ID,摘要,金额,开始日期,结束日期,备注) Values (1203,1303,2,'十一月房租',3000,#2012-11-01#,#2012-11-30#,'')
;;
-- rent receipt by account: insert a line without a period
 InSert Into fwjsmx(单据ID,单据明细ID,科目ID,摘要,金额,开始日期,结束日期,备注) Values (1203,1304,3,'物业管理费',150,null,null,'代收')
;;
-- rent receipt by account: update a line with its period
 Update fwjsmx Set 单据ID=1203,科目ID=2,摘要='十一月房租',金额=3000,开始日期=#2012-11-01#,结束日期=#2012-11-30#,备注='' Where 单据明细ID=1303
;;
-- rent receipt by account: update a line without a period
 Update fwjsmx Set 单据ID=1203,科目ID=3,摘要='物业管理费',金额=150,开始日期=null,结束日期=null,备注='代收' Where 单据明细ID=1304
;;
-- rent receipt by account: lines with their accounts
select A.*,B.科目名称 from fwjsmx A left join pdmkjkm B on A.科目ID=B.科目ID where 单据ID=1203 order by 单据明细ID
;;
-- rent receipt approval: book a line with its period
insert into fwhd_js(合同ID,起租日期,止租日期,总租金额,结算ID,开始日期,结束日期,金额,摘要,科目ID)values(703,#2012-11-01#,#2013-10-31#,36000,1303,#2012-11-01#,#2012-11-30#,3000,'十一月房租',2)
;;
-- rent receipt approval: book a line without a period
insert into fwhd_js(合同ID,起租日期,止租日期,总租金额,结算ID,开始日期,结束日期,金额,摘要,科目ID)values(703,#2012-11-01#,#2013-10-31#,36000,1304,null,null,150,'物业管理费',3)
;;
-- rent receipt un-approval: take the lines back off the contract
 delete from fwhd_js where 结算ID in(select 单据明细ID from fwjsmx where 单据ID=1203)
;;
-- rent receipt un-approval: contract completed by this receipt
select 合同ID from fwhd WHERE 合同ID in(select 合同ID from fwjs where 单据ID=1203) and 状态='完成' and 止租日期 in(select 结束日期 from fwjsmx where 单据ID=1203)
;;
-- fee receipt: billing mode of the fee picked
select 计费方式 from fwfykm where 费用ID=301
;;
-- fee receipt: number unique among new receipts
 select Top 1 单据ID from  fwjsfy where  单据编号 ='FS2012-001'and progid =870305
;;
-- fee receipt: number unique among the other receipts
 Select Top 1 单据ID From fwjsfy Where 单据ID <> 1401 and progid =870305 and 单据编号='FS2012-001'
;;
-- fee receipt: insert a receipt collected
 InSert Into fwjsfy(单据编号,操作日期,费用ID,合同ID,客户ID,房源ID,开始日期,结束日期,起数,止数,用量,面积,单价,金额,是否收款,经手人,收款日期,备注,progID,单据ID,填单人,填单日期,系统,smark) Values ('FS2012-001',#2012-10-11#,301,701,403,501,#2012-10-01#,#2012-10-31#,0,0,0,89.5,1.8,161.1,1,'李四',#2012-10-11#,'',870305,1401,'张三',#2012-10-11#,'填单','01')
;;
-- fee receipt: insert a receipt not yet collected
 InSert Into fwjsfy(单据编号,操作日期,费用ID,合同ID,客户ID,房源ID,开始日期,结束日期,起数,止数,用量,面积,单价,金额,是否收款,经手人,收款日期,备注,progID,单据ID,填单人,填单日期,系统,smark) Values ('FS2012-002',#2012-10-11#,301,701,403,501,#2012-11-01#,#2012-11-30#,120,180,60,0,0.5,30,0,'',Null,'水费',870305,1402,'张三',#2012-10-11#,'填单','01')
;;
-- fee receipt: update a receipt collected
 Update fwjsfy Set 单据编号='FS2012-001',费用ID=301,合同ID=701,客户ID=403,房源ID=501,开始日期=#2012-10-01#,结束日期=#2012-10-31#,起数=0,止数=0,用量=0,面积=89.5,单价=1.8,金额=161.1,是否收款=1,经手人='李四',收款日期=#2012-10-12#,备注='',progID=870305,填单人='张三',填单日期=#2012-10-11#,系统='填单',smark='01' Where 单据ID=1401
;;
-- fee receipt: update a receipt not yet collected
 Update fwjsfy Set 单据编号='FS2012-002',费用ID=301,合同ID=701,客户ID=403,房源ID=501,开始日期=#2012-11-01#,结束日期=#2012-11-30#,起数=120,止数=190,用量=70,面积=0,单价=0.5,金额=35,是否收款=0,经手人='',收款日期=Null,备注='水费',progID=870305,填单人='张三',填单日期=#2012-10-11#,系统='填单',smark='01' Where 单据ID=1402
;;
-- fee receipt approval: receipt already in the aimed state
 SELECT sMark FROM fwjsfy WHERE 单据ID=1401 And smark=02
;;
-- fee receipt approval: mark the receipt approved
 Update fwjsfy  Set progID=870305, smark='02', 审核人='张三', 审核日期=#2012-10-11#, 系统='审核' Where 单据ID=1401
;;
-- fee category delete: category used by a fee receipt
 select top 1 费用ID from fwjsfy where 费用ID=301
;;
-- fee receipt: last receipt of the function
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号,D.房源编号,D.房源名称,E.费用名称,E.计费方式 from (((fwjsfy A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwfy D on A.房源ID=D.房源ID) left join fwfykm E on A.费用ID=E.费用ID) q where (progid=870305) order by 单据ID desc
;;
-- fee receipt: next receipt under a filter
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号,D.房源编号,D.房源名称,E.费用名称,E.计费方式 from (((fwjsfy A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwfy D on A.房源ID=D.房源ID) left join fwfykm E on A.费用ID=E.费用ID) q where (progid=870305 AND  费用名称 like '%物业%'  and 是否收款='1') and (单据ID>1401) order by 单据ID
;;
-- fee receipt: find a receipt
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号,D.房源编号,D.房源名称,E.费用名称,E.计费方式 from (((fwjsfy A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwfy D on A.房源ID=D.房源ID) left join fwfykm E on A.费用ID=E.费用ID) q where (progid=870305) and ( 房源编号 like '%FY%'  and 开始日期>=#2012-10-01#) order by 单据ID
;;
-- fee receipt: reopen the receipt shown
select top 1 * from (select A.*,B.业主名称 as 客户,C.合同编号,D.房源编号,D.房源名称,E.费用名称,E.计费方式 from (((fwjsfy A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwfy D on A.房源ID=D.房源ID) left join fwfykm E on A.费用ID=E.费用ID) q where (progid=870305 and 单据ID=1401) and (单据ID=1401) order by 单据ID
;;
-- fee receipt: number of receipts of the function
select count(*) from (select A.*,B.业主名称 as 客户,C.合同编号,D.房源编号,D.房源名称,E.费用名称,E.计费方式 from (((fwjsfy A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwfy D on A.房源ID=D.房源ID) left join fwfykm E on A.费用ID=E.费用ID) q where (progid=870305)
;;
-- fee receipt: position of the receipt shown
select count(*) from (select A.*,B.业主名称 as 客户,C.合同编号,D.房源编号,D.房源名称,E.费用名称,E.计费方式 from (((fwjsfy A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwfy D on A.房源ID=D.房源ID) left join fwfykm E on A.费用ID=E.费用ID) q where (progid=870305) and (单据ID<=1401)
;;
-- contract list report: every condition, approved only, not ended
  SELECT FwHd.合同日期, FwHd.合同编号, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, fwhd.面积, FwYz.业主名称 As 租客姓名,         FwYz.电话 As 联系电话, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.月租金, PDMgy.姓名 AS 业务员, FwHd.状态, FwHd.备注,         FwHd.制单人, FwHd.制单日期, FwHd.系统, FwHd.审核人, FwHd.审核日期, FwHd.progid, FwHd.合同ID    FROM (FwWy RIGHT JOIN (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)         LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)         LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID) ON FwWy.物业ID = FwFy.物业ID)         LEFT JOIN PDMgy ON FwHd.业务员ID = PDMgy.雇员ID where 1=1  and fwhd.合同日期>=#2012-01-01# and fwhd.合同日期<=#2012-12-31# and fwhd.止租日期>=#2013-01-01# and fwhd.止租日期<=#2013-12-31# and fwwy.物业名称='阳光花园' and PDMgy.姓名='张三' and FwYz.业主名称='赵小明' and FwFy.房源编号='FY001' and fwhd.smark='02' and fwhd.状态<>'终止' order by fwhd.合同编号
;;
-- contract list report: contracts not yet in force
  SELECT FwHd.合同日期, FwHd.合同编号, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, fwhd.面积, FwYz.业主名称 As 租客姓名,         FwYz.电话 As 联系电话, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.月租金, PDMgy.姓名 AS 业务员, FwHd.状态, FwHd.备注,         FwHd.制单人, FwHd.制单日期, FwHd.系统, FwHd.审核人, FwHd.审核日期, FwHd.progid, FwHd.合同ID    FROM (FwWy RIGHT JOIN (((FwHd LEFT JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)         LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)         LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID) ON FwWy.物业ID = FwFy.物业ID)         LEFT JOIN PDMgy ON FwHd.业务员ID = PDMgy.雇员ID where 1=1  and fwhd.状态='未生效' order by fwhd.合同编号
;;
-- receipt list report: every condition, approved only
 SELECT FwJs.操作日期 As 收款日期, FwJs.单据编号 As 收款单号, FwHd.合同编号 As 租房合同号, FwFy.房源编号, FwWy.物业名称,        FwFy.房源名称, FwFy.出租价格, FwFy.所属区域, FwYz.业主名称 As 租客姓名, FwYz.电话 As 联系电话, FwJs.合计金额,        FwJs.实收金额, FwJs.欠收金额, PDMgy.姓名 As 业务员, FwJs.制单人, FwJs.制单日期, FwJs.系统, FwJs.审核人,        FwJs.审核日期, FwJs.progid, FwJs.单据ID   FROM ((((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)      LEFT JOIN FwFy ON FwJs.房源ID = FwFy.房源ID)      LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)      LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID)      LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID where 1=1  and FwJs.操作日期>=#2012-10-01# and FwJs.操作日期<=#2012-10-31# and fwwy.物业名称='阳光花园' and PDMgy.姓名='张三' and FwYz.业主名称='赵小明' and FwFy.房源编号='FY001' and FwHd.合同编号='HT2012-001' and FwJs.smark='02' order by FwJs.单据编号
;;
-- contract collection report: schedule with what was received
 select fwhdfs_sk.费用名称,fwhdfs_sk.是否包干,fwhdfs_sk.是否预收,fwhdfs_sk.收款期间,fwhdfs_sk.收款日期 As 需收款日期,        fwhdfs_sk.起始日期 As 收款起始日期,fwhdfs_sk.结束日期 As 收款结束日期,fwhdfs_sk.是否已收,t.操作日期 As 实际收款日期,        t.单据编号 As 收款单号,t.收款金额,fwhdfs_sk.autoid,fwhdfs_sk.序号,t.progid,t.单据ID   from fwhdfs_sk left join (            SELECT FwJs.操作日期, FwJs.单据编号, FwJsMx.费用名称, FwJsMx.总包干额+FwJsMx.总用量额 As 收款金额,fwjsmx.前置单据ID,fwjs.progid,fwjs.单据ID              FROM FwJs INNER JOIN FwJsMx ON FwJs.单据ID = FwJsMx.单据ID              where FwJs.smark='02' and fwjsmx.费用名称<>'其他') t on fwhdfs_sk.autoid=t.前置单据ID   where fwhdfs_sk.合同ID=701 Union All   SELECT  fwjsmx.费用名称, 0,0,0,FwJs.操作日期,null,null,0,FwJs.操作日期, FwJs.单据编号,   FwJsMx.其他金额 As 收款金额,0,99,fwjs.progid,fwjs.单据ID     FROM FwJs INNER JOIN FwJsMx ON FwJs.单据ID = FwJsMx.单据ID    where FwJs.smark='02' and fwjsmx.费用名称='其他' and fwjsmx.其他金额<>0 and fwjs.合同ID=701 order by 需收款日期,序号
;;
-- receipt detail report: receipts under every condition
 SELECT FwJs.操作日期 As 收款日期, FwJs.单据编号 As 收款单号, FwHd.合同编号 As 租房合同号, FwFy.房源编号, FwWy.物业名称,        FwFy.房源名称, FwYz.业主名称 As 租客姓名, FwYz.电话 As 联系电话, FwJs.合计金额,        FwJs.实收金额, FwJs.欠收金额, PDMgy.姓名 As 业务员,FwJs.progid, FwJs.单据ID   FROM ((((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)      LEFT JOIN FwFy ON FwJs.房源ID = FwFy.房源ID)      LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)      LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID)      LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID where 1=1  and FwJs.操作日期>=#2012-10-01# and FwJs.操作日期<=#2012-10-31# and fwwy.物业名称='阳光花园' and PDMgy.姓名='张三' and FwYz.业主名称='赵小明' and FwFy.房源编号='FY001' and FwHd.合同编号='HT2012-001' and FwJs.smark='02' order by FwJs.单据编号
;;
-- receipt detail report: rent block of a receipt
 SELECT fwjsmx.开始日期,fwjsmx.结束日期,包干价,fwjsmx.总包干额    from  fwjsmx    where fwjsmx.单据ID=1201 and fwjsmx.费用名称='租金'
;;
-- receipt detail report: electricity or water block of a receipt
 SELECT fwjsmx.开始日期,fwjsmx.结束日期,fwjsmx.总包干额,fwjsmx.是否包干,        fwjsmx.上期读数,fwjsmx.本次读数,fwjsmx.总用量额,单价,包干价,实际用量   from  fwjsmx    where fwjsmx.单据ID=1201 and fwjsmx.费用名称='电费'
;;
-- receipt detail report: gas block of a receipt
 SELECT fwjsmx.上期读数,fwjsmx.本次读数,fwjsmx.总用量额,单价,实际用量   from  fwjsmx    where fwjsmx.单据ID=1201 and fwjsmx.费用名称='煤气费'
;;
-- receipt detail report: sundry block of a receipt
 SELECT fwjsmx.备注,fwjsmx.总用量额   from  fwjsmx    where fwjsmx.单据ID=1201 and fwjsmx.费用名称='其他额'
;;
-- receipt detail report by fee: receipts with their deposit
 SELECT FwJs.操作日期 As 收款日期, FwJs.单据编号 As 收款单号, FwHd.合同编号 As 租房合同号, FwFy.房源编号, FwWy.物业名称,        FwFy.房源名称, FwYz.业主名称 As 租客姓名, FwYz.电话 As 联系电话, FwJs.合计金额,        FwJs.实收金额, FwJs.欠收金额, PDMgy.姓名 As 业务员,FwJs.progid, FwJs.单据ID,fwjs.押金   FROM ((((FwJs LEFT JOIN FwHd ON FwJs.合同ID = FwHd.合同ID)      LEFT JOIN FwFy ON FwJs.房源ID = FwFy.房源ID)      LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)      LEFT JOIN PDMgy ON FwJs.业务员ID = PDMgy.雇员ID)      LEFT JOIN FwYz ON FwJs.客户ID = FwYz.业主ID where 1=1  and FwJs.操作日期>=#2012-10-01# and FwJs.操作日期<=#2012-10-31# order by FwJs.单据编号
;;
-- receipt detail report by fee: amount of one fee on a receipt
 select 其他金额+总包干额+总用量额 from fwjsmx where 单据ID=1201 and 费用名称='房租'
;;
-- contract due report: contracts in force ending soon
 SELECT FwHd.合同编号, FwHd.合同日期, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, FwFy.户型,       fwhd.分租房间, Fwhd.面积, FwYz.业主名称, FwYz.电话, FwHd.起租日期, FwHd.止租日期, FwHd.租赁期, FwHd.月租金, FwHd.状态,FwHd.progID,FwHd.合同ID   FROM ((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)     LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)     LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)     LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)     LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID  WHERE FwHd.smark='02' and fwhd.状态='生效'    and FwHd.止租日期<=#2012-11-10#  order by FwHd.合同编号
;;
-- collection due report: schedule rows falling due soon
 SELECT  FwHd.合同编号, FwHd.合同日期, FwFy.房源编号, FwWy.物业名称, FwFy.房源名称, FwFy.户型, FwHd.分租房间, FwYz.业主名称, FwYz.电话, FwHdFs_SK.费用名称,        FwHdFs_SK.收款期间, FwHdFs_SK.收款日期 As 需收款日期,  FwHd.状态, FwHd.progid, FwHd.合同ID FROM (((((FwHd INNER JOIN FwHdMx ON FwHd.合同ID = FwHdMx.合同ID)      LEFT JOIN FwFy ON FwHdMx.房源ID = FwFy.房源ID)      LEFT JOIN FwYz ON FwHd.客户ID = FwYz.业主ID)      LEFT JOIN PDMXSY ON FwHd.业务员ID = PDMXSY.AutoID)      LEFT JOIN FwWy ON FwFy.物业ID = FwWy.物业ID)      INNER JOIN FwHdFs_SK ON FwHd.合同ID = FwHdFs_SK.合同ID  WHERE FwHd.smark='02' and fwhd.状态='生效' and fwhdfs_sk.是否已收=0    and FwHdfs_sk.收款日期<=#2012-10-18#  order by FwHd.合同编号,fwhdfs_sk.序号
;;
-- deposit query: deposit receipts under every condition
select 操作日期,单据编号,C.合同编号,业主名称 as 客户名称,发票号码,摘要,金额 as 收款金额,经手人 as 收款人,A.备注,A.progID,A.单据ID from (fwJs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID where A.progID in(select progID from xt_objects where billitem=8711) and A.客户ID=403 and A.操作日期>=#2012-10-01# and A.操作日期<=#2012-10-31# and A.smark='02' order by 操作日期,单据编号
;;
-- contract query: contracts under every condition
select 合同日期,合同编号,业主名称 as 客户名称,状态 as 合同状态,起租日期,止租日期,租赁期,月租金,总金额,A.备注,A.progID,A.合同ID from fwhd A left join fwyz B on A.客户ID=B.业主ID where 1=1 and 状态='生效' and A.起租日期>=#2012-01-01# and A.起租日期<=#2012-12-31# and A.止租日期>=#2013-01-01# and A.止租日期<=#2013-12-31# and A.smark='02' order by 合同日期,合同编号
;;
-- fee query: fee receipts under every condition
select 费用名称,操作日期,单据编号,C.合同编号,业主名称 as 客户名称,E.房源名称,开始日期 as 起始日期,结束日期 as 终止日期,起数,止数,用量,A.面积,A.单价,金额,是否收款,经手人 as 收款人,收款日期,A.备注,A.progID,A.单据ID from (((fwJsfy A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwfykm D on A.费用ID=D.费用ID) left join fwfy E on A.房源ID=E.房源ID where 1=1 and A.费用ID=301 and A.客户ID=403 and A.开始日期>=#2012-10-01# and A.开始日期<=#2012-10-31# and A.结束日期>=#2012-10-01# and A.结束日期<=#2012-12-31# and A.是否收款=1 and A.smark='02' order by 费用名称,操作日期,单据编号
;;
-- rent query: code of the account picked
select 科目编码 from pdmkjkm where 科目ID=1
;;
-- rent query: rent lines under every condition
select 操作日期,单据编号,C.合同编号,业主名称 as 客户名称,发票号码,E.科目名称,D.摘要,D.开始日期 as 起始日期,D.结束日期 as 终止日期,D.金额 as 收款金额,经手人 as 收款人,A.备注,A.progID,A.单据ID from (((fwJs A left join fwyz B on A.客户ID=B.业主ID) left join fwhd C on A.合同ID=C.合同ID) left join fwjsmx D on A.单据ID=D.单据ID) left join pdmkjkm E on D.科目ID=E.科目ID where 1=1 and A.客户ID=403 and E.科目编码 like '5502%' and D.开始日期>=#2012-11-01# and D.开始日期<=#2012-11-30# and D.结束日期>=#2012-11-01# and D.结束日期<=#2012-12-31# and A.smark='02' order by 操作日期,单据编号
;;
-- contract un-approval: receipt of the contract
 SELECT 合同ID from fwjs where  合同ID=701
;;
-- receipt delete: drop the receipt
Delete from fwjs where 单据ID=1201
;;
-- receipt delete: drop its lines
Delete from fwjsmx where 单据ID=1201
;;
-- fee receipt delete: drop the receipt
 Delete from fwjsfy where 单据ID=1402
;;
-- contract delete: drop the contract
Delete from fwhd where 合同ID=702
;;
-- contract delete: drop its unit
Delete from fwhdmx where 合同ID=702
;;
-- contract delete: drop its fee terms
Delete from fwhdfs where 合同ID=702
;;
-- housing unit delete: drop the unit
Delete from fwfy where 房源ID=503
;;
-- quick housing register delete: unit named by a contract
 select 房源ID from fwhdmx where 房源ID=503
;;
-- party delete: party owning a housing unit
 select top 1 业主ID from fwfy where 业主ID=401
;;
-- party delete: drop the party
delete from fwyz where 业主ID=401
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
