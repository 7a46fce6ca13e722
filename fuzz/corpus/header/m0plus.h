#define __CM0PLUS_REV 0
#define __NVIC_PRIO_BITS 2
  SysTick_IRQn = -1,
	TAB_IRQn = 5,
  X_IRQn
