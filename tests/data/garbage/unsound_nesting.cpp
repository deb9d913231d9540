a[f(b]c)d{e(}g;h)+i]j}k;"l'm";'n"o';p(";",q[1,2],{r;s})=t;x)
