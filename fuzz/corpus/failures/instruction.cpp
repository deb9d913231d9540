int aa;
  foo = bar(1, (2);
