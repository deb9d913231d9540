char* s = "a \" b // c" "d" ; char c = '\'' , d = '\\' , e = '"' ;
"two
lines" x;
