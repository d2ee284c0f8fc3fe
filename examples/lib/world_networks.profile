# world_networks.profile - the X.25 networks known to this site.
# number  name  description
# Networks 1 to 4 and 25 are the ones the protocol defaults refer to.
1	X25_LLC		X.25 over LLC2 on a local area network
2	X25_1988	Public data network, CCITT X.25 (1988)
3	X25_1984	Public data network, CCITT X.25 (1984)
4	X25_1980	Public data network, CCITT X.25 (1980)
10	PSS		British Telecom packet switched service
11	TRANSPAC	French public packet network
12	DATEX-P		German public packet network
13	DATAPAC		Canadian public packet network
25	X21_V25		Circuit-switched access, X.21 or V.25 call procedure
