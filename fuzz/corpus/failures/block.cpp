void f()
{
  if (x) {
}
