function init() {
  Threads.clear();
  Threads.setColumns("Name", "Priority", "State");
  Threads.setSortByNumber("Priority");
  Threads.setColor("State", "red", "green", "blue");
  Threads.newqueue("Ready");
  for (var i = 0; i < 20; i++) Threads.add("task" + i, i, i + 1);
  Threads.add("regs", 1, [1, 2, 3]);
  Threads.setColumns2("Timers", "Name");
  Threads.newqueue2("Timers", "Active");
  if (Threads.shown("Timers")) Threads.add2("Timers", "t", 4);
}
function getregs(id) { var r = []; for (var i = 0; i < 17; i++) r[i] = id * i; return r; }
