var init = 5;
function getregs(id) { return { length: id }; }
missing();
