#pragma once
class SHIPS_API Hold;
enum class Side : unsigned { Port = (1 << 2), Starboard, Both = Port | Starboard };
class SHIPS_API Ship final : public CoastObject, private virtual List<int, char> {
  int depth;
  Ship() = default;
public:
  explicit Ship(int a) noexcept : depth(a), side{3} {}
  Ship(const Ship&) = delete;
  virtual ~Ship() override = default;
  auto Length() const -> std::vector<int>;
  template <class T, int N = 3> T Least(const T& a) const;
  static constexpr int table[] = {1, 2, 3};
  int bits : 3, more : 4;
  using T = int;
  friend bool operator==(const Ship& a, const Ship& b);
  operator const char*() const { return 0; }
  bool operator()(int a) const;
  int a, *b, c[3], (*fp)(int);
  const char* const names[2] = {"a", "b\"),"};
  struct { int anonymous; } place, *places;
public slots: void Hail();
};
TIE_IShip(Ship);
typedef struct tag { int a; } Tag, *TagPointer;
typedef void Call(int);
template <> struct std::hash<Ship> { int operator()(const Ship&) const; };
void (*signal(int number, void (*handler)(int)))(int);
int one{1}, *two = {0}, three(3);
NUBLISTP(Ship) fleet; SEQUENCE(long) depths;
bool less = one < two, more = one > two;
int Ship::Length() const try : depth(1) { } catch (...) { }
[[nodiscard]] __attribute__((cold)) int Cold(int a = f(1, 2), const char* b = "x,y)");
