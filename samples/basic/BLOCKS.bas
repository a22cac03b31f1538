10REM Tumbling blocks: stare at them until they turn over
20MODE 5:VDU 23,1,0;0;0;0;
30W%=80:H%=48
40FOR R%=-1 TO 8
50FOR C%=-1 TO 8
60X%=C%*W%*2+(R% AND 1)*W%:Y%=R%*H%*3-24
70PROCfour(3,X%,Y%,X%+W%,Y%+H%,X%,Y%+H%*2,X%-W%,Y%+H%)
80PROCfour(2,X%,Y%,X%-W%,Y%+H%,X%-W%,Y%-H%,X%,Y%-H%*2)
90PROCfour(1,X%,Y%,X%+W%,Y%+H%,X%+W%,Y%-H%,X%,Y%-H%*2)
100GCOL 0,0:MOVE X%,Y%:DRAW X%+W%,Y%+H%:DRAW X%,Y%+H%*2:DRAW X%-W%,Y%+H%:DRAW X%,Y%:DRAW X%,Y%-H%*2
110MOVE X%-W%,Y%+H%:DRAW X%-W%,Y%-H%
120NEXT:NEXT
130END
140DEF PROCfour(K%,A%,B%,C%,D%,E%,F%,G%,I%)
150GCOL 0,K%:MOVE A%,B%:MOVE C%,D%:PLOT 85,G%,I%
160MOVE C%,D%:MOVE E%,F%:PLOT 85,G%,I%
170MOVE A%,B%:MOVE C%,D%:PLOT 85,E%,F%:MOVE A%,B%:MOVE G%,I%:PLOT 85,E%,F%
180ENDPROC
