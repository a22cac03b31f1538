10REM Guess my number, for one player
20MODE 7
30PRINT CHR$141;CHR$130;"Guess my number"
40PRINT CHR$141;CHR$130;"Guess my number"
50N%=RND(100):T%=0
60PRINT '"I think of a number from 1 to 100."
70REPEAT
80INPUT "Your guess"G%
90T%=T%+1
100IF G%<N% THEN PRINT "It is more than ";G%
110IF G%>N% THEN PRINT "It is less than ";G%
120UNTIL G%=N%
130PRINT "Found in ";T%;" guess";
140IF T%>1 THEN PRINT "es";
150PRINT "!"
160IF T%<8 THEN PROCfanfare
170END
180DEF PROCfanfare
190FOR I%=1 TO 4
200SOUND 1,-12,53+I%*16,4
210NEXT
220SOUND 1,-12,133,12
230ENDPROC
